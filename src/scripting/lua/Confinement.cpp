#include "scripting/lua/Confinement.hpp"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <system_error>

namespace scripting {
namespace {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VANTORIX_SHADOWED
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VANTORIX_SHADOWED
#endif

void Check(int result, const char* what) {
  if (result != 0) throw std::system_error(errno, std::generic_category(), what);
}

template <class Resource>
void Bound(Resource resource, rlim_t most) {
  const rlimit limit{most, most};
  Check(::setrlimit(resource, &limit), "a limit can’t be set");
}

}  // namespace

void Confine() {
  // The time zone's file can't be opened later; where it has no name, it would be looked for at each use.
  Check(::setenv("TZ", ":/etc/localtime", 0), "the time zone can’t be named");
  ::tzset();
  Check(::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0), "the end of the server can’t be heard");
  Check(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), "privileges can’t be given up");
#ifndef VANTORIX_SHADOWED  // a sanitizer's own memory is larger than any limit
  // The language's memory, and beside it what the house has answered, as it comes and as it is handed over.
  Bound(RLIMIT_AS, rlim_t{1} << 30U);
#endif
  Bound(RLIMIT_CORE, 0);
  Bound(RLIMIT_FSIZE, 0);
  Bound(RLIMIT_NOFILE, STDERR_FILENO + 1);
  Bound(RLIMIT_NPROC, 0);
}

void BoundProcessor(std::chrono::seconds most) { Bound(RLIMIT_CPU, static_cast<rlim_t>(most.count())); }

}  // namespace scripting
