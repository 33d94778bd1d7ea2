#pragma once
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Browser.hpp"
#include "support/JsonText.hpp"

namespace support {

/// What the page shown now does wrong for users of keyboards, screen readers and the like: all that axe-core
/// calls serious or critical, with the elements. Throws when the rules are not installed.
inline std::vector<std::string> Barriers(Browser& browser) {
  std::ifstream file(AXE_FILE, std::ios::binary);
  const std::string rules((std::istreambuf_iterator<char>(file)), {});
  if (rules.empty()) {
    throw std::runtime_error(std::string("The rules are missing: ") + AXE_FILE +
                             " (\"npm ci --prefix src/standin/pages\" installs them)");
  }
  const Browser::Json found = browser.runAsync(
      rules +
      "; const done = arguments[arguments.length - 1];"
      "axe.run(document, {resultTypes: ['violations']}).then((told) => done({rules: told.passes.length,"
      "  barriers: told.violations.filter((each) => ['serious', 'critical'].includes(each.impact))"
      "    .flatMap((each) => each.nodes.map((node) => `${each.impact} ${each.id}: ${node.target.join(' ')}: "
      "${node.failureSummary}`))}), (error) => done({rules: 0, barriers: [String(error)]}))");
  if (found["rules"].get<int>() < 5) throw std::runtime_error("The rules found no page: " + TextOf(found));
  return found["barriers"].get<std::vector<std::string>>();
}

}  // namespace support
