// docs/rules.md against the table of members: every operation stands in one row of the page, and the row says of
// place and memory what the frame test shows of the member by calling it, or what a call here shows.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "bench/states.h"
#include "members/members.h"
#include "support/faults.h"
#include "support/guarded.h"

namespace tzm_test::rules_test {

struct Rule { std::vector<std::string> patterns; std::string in_place, allocates; };

std::vector<Rule> ReadPage() {
  std::vector<Rule> rules;
  std::ifstream page(TZM_RULES_PAGE);
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| `")) continue;
    std::istringstream cells(line.substr(1));
    std::string names, in_place, allocates;
    std::getline(cells, names, '|');
    cells >> in_place;
    cells.ignore(line.size(), '|') >> allocates;
    Rule rule{{}, in_place.substr(0, in_place.find(',')), allocates};
    std::istringstream quoted(names);
    for (std::string pattern; quoted >> pattern;) rule.patterns.push_back(pattern.substr(1, pattern.size() - 2));
    rules.push_back(rule);
  }
  return rules;
}

// The one row that a name stands in.
const Rule& Find(const std::vector<Rule>& rules, const std::string& name, std::set<std::string>& used) {
  static const Rule kNone{{}, "?", "?"};
  const Rule* found = &kNone;
  for (const Rule& rule : rules)
    for (const std::string& pattern : rule.patterns) {
      if (fnmatch(pattern.c_str(), name.c_str(), 0) != 0) continue;
      EXPECT_EQ(found, &kNone) << name << " stands twice in the page";
      found = &rule;
      used.insert(pattern);
    }
  EXPECT_NE(found, &kNone) << name << " is not in the page";
  return *found;
}

// Whether a destination has the type of a source.
bool HasPair(const Member& member) {
  for (const Argument& dst : member.arguments)
    for (const Argument& source : member.arguments)
      if (dst.role == Role::kDst && source.role == Role::kSource && dst.sample == source.sample) return true;
  return member.Has(Role::kSrcDst);
}

TEST(Rules, PageAgreesWithTheMembers) {
  const std::vector<Rule> rules = ReadPage();
  std::set<std::string> used;
  for (const char* name : {"sprintf_s", "vsprintf_s", "SecVsnprintfImpl"}) Find(rules, name, used);
  for (const Room& room : AllRooms()) {
    if (room.name == "companion") continue;
    for (const Member& member : room.members) {
      SCOPED_TRACE(member.name);
      for (const std::string& name : member.covers) Find(rules, name, used);
      const Rule& rule = Find(rules, member.name, used);
      if (!member.IsScenario()) {
        const OrvaStatus status = member.allocation_status;
        EXPECT_EQ(rule.allocates, status == ORVA_STS_NO_ERR ? "no" : std::to_string(status));
        EXPECT_EQ(rule.in_place, !HasPair(member) ? rule.in_place : member.in_place ? "yes" : "no");
      } else if (const auto state = tzm_bench::AllStates().find(member.name); state != tzm_bench::AllStates().end()) {
        const tzm_bench::Timed timed = state->second(2048);
        FailRequest(0);
        EXPECT_EQ(timed.run(), ORVA_STS_NO_ERR);
        EXPECT_EQ(rule.allocates != "no", Requests() > 0);
      }
    }
  }
  for (const Rule& rule : rules)
    for (const std::string& pattern : rule.patterns) EXPECT_TRUE(used.contains(pattern)) << pattern << " names nothing";
}

// The same bits from arrays at any address, and nothing beyond them, in the operations that the table cannot call.
TEST(Rules, StatesAtAnyAddress) {
  const auto usual = tzm_bench::take_array;
  for (const auto& [name, make] : tzm_bench::AllStates()) {
    std::vector<std::vector<char>> expected, actual;
    for (Place place : {Place::kEnd, Place::kUnaligned}) {
      std::vector<std::pair<std::shared_ptr<char>, size_t>> arrays;
      tzm_bench::take_array = [&](size_t bytes) {
        const auto pages = std::make_shared<GuardedBytes>(bytes);
        arrays.push_back({{pages, static_cast<char*>(pages->At(place, bytes))}, bytes});
        return arrays.back().first;
      };
      SetCallUnderTest(name);
      const tzm_bench::Timed timed = make(2048);
      EXPECT_EQ(timed.run(), ORVA_STS_NO_ERR) << name;
      actual.clear();
      for (const auto& [data, bytes] : arrays) actual.emplace_back(data.get(), data.get() + bytes);
      if (place == Place::kEnd) expected = actual;
    }
    EXPECT_TRUE(expected == actual) << name << " gives other bits at odd addresses";
  }
  tzm_bench::take_array = usual;
}

}  // namespace tzm_test::rules_test
