// The filter of the kernel behind which a script runs: what isn't named here is refused with EPERM, whatever
// a fault in the language would have the process do.
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <system_error>
#include <vector>

#include "scripting/lua/Confinement.hpp"

namespace scripting {

#if defined(__x86_64__) || defined(__aarch64__)
namespace {

#ifdef __x86_64__
constexpr std::uint32_t kMachine = AUDIT_ARCH_X86_64;
#else
constexpr std::uint32_t kMachine = AUDIT_ARCH_AARCH64;
#endif
static_assert(std::endian::native == std::endian::little, "the lower half of an argument is its first");

constexpr std::uint32_t kRefused = SECCOMP_RET_ERRNO | EPERM;

/// What the language, its memory, its clock and the sanitizers need, and how a process ends.
constexpr std::initializer_list<std::uint32_t> kAllowed = {
    SYS_read,         SYS_write,           SYS_writev,
    SYS_munmap,       SYS_mremap,          SYS_madvise,
    SYS_brk,          SYS_futex,           SYS_getrandom,
    SYS_getpid,       SYS_gettid,          SYS_clock_gettime,
    SYS_rt_sigaction, SYS_rt_sigprocmask,  SYS_rt_sigreturn,
    SYS_sigaltstack,  SYS_restart_syscall, SYS_gettimeofday,
#ifdef SYS_time
    SYS_time,
#endif
    SYS_exit,         SYS_exit_group};

/// A filter as the kernel runs it: each instruction is told how many to leave out.
class Filter {
 public:
  void load(std::size_t offset) { add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)); }
  void loadArgument(unsigned which) { load(offsetof(seccomp_data, args) + which * sizeof(std::uint64_t)); }
  void leaveOutIf(std::uint32_t value, std::uint8_t count) {
    add(BPF_JMP | BPF_JEQ | BPF_K, value, count, 0);
  }
  void leaveOutUnless(std::uint32_t value, std::uint8_t count) {
    add(BPF_JMP | BPF_JEQ | BPF_K, value, 0, count);
  }
  void leaveOutIfAnyOf(std::uint32_t bits, std::uint8_t count) {
    add(BPF_JMP | BPF_JSET | BPF_K, bits, count, 0);
  }
  void answer(std::uint32_t what) { add(BPF_RET | BPF_K, what); }

  /// Holds for this process from now on; it can't be taken back. The privileges must have been given up.
  void install() {
    const sock_fprog program{static_cast<unsigned short>(steps_.size()), steps_.data()};
    if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) != 0) {
      throw std::system_error(errno, std::generic_category(), "calls of the system can’t be refused");
    }
  }

 private:
  void add(unsigned code, std::uint32_t value, std::uint8_t ifTrue = 0, std::uint8_t ifFalse = 0) {
    steps_.push_back({static_cast<std::uint16_t>(code), ifTrue, ifFalse, value});
  }
  std::vector<sock_filter> steps_;
};

}  // namespace

void RefuseOtherCalls() {
  Filter filter;
  // The numbers below mean something else to another kind of program.
  filter.load(offsetof(seccomp_data, arch));
  filter.leaveOutIf(kMachine, 1);
  filter.answer(SECCOMP_RET_KILL_PROCESS);

  filter.load(offsetof(seccomp_data, nr));
  for (const std::uint32_t number : kAllowed) {
    filter.leaveOutUnless(number, 1);
    filter.answer(SECCOMP_RET_ALLOW);
  }
  // Memory, but none that may be executed.
  for (const std::uint32_t number : {SYS_mmap, SYS_mprotect}) {
    filter.leaveOutUnless(number, 4);
    filter.loadArgument(2);
    filter.leaveOutIfAnyOf(PROT_EXEC, 1);
    filter.answer(SECCOMP_RET_ALLOW);
    filter.answer(kRefused);
  }
  // A process that has found itself at fault ends itself by a signal, and nobody else.
  filter.leaveOutUnless(SYS_tgkill, 3);
  filter.loadArgument(0);
  filter.leaveOutUnless(static_cast<std::uint32_t>(::getpid()), 1);
  filter.answer(SECCOMP_RET_ALLOW);
  filter.answer(kRefused);
  filter.install();
}
#else
void RefuseOtherCalls() {}  // the limits of Confine alone hold there
#endif

}  // namespace scripting
