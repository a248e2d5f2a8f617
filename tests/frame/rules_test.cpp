// docs/rules.md against the table of members: every operation stands in one row of the page, and the row says of
// place and memory what the frame test shows of the member by calling it, or what a call here shows.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include <signal_tzm.h>

#include "bench/states.h"
#include "members/members.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

struct Rule {
  std::vector<std::string> patterns;
  std::string in_place, allocates;
};

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
  for (const Rule& rule : rules) {
    for (const std::string& pattern : rule.patterns) {
      if (fnmatch(pattern.c_str(), name.c_str(), 0) != 0) continue;
      EXPECT_EQ(found, &kNone) << name << " stands twice in the page";
      found = &rule;
      used.insert(pattern);
    }
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

// The same bits from arrays at any address, in the operations that the frame test cannot call.
template <class Src, class Dst>
void ExpectAnyAddress(const std::string& what, size_t in, size_t out, auto call) {
  std::vector<Dst> expected(out);
  for (Place place : {Place::kEnd, Place::kUnaligned}) {
    GuardedArray<Src> src(RandomArray<Src>(in, 1), place);
    GuardedArray<Dst> dst(std::vector<Dst>(out), place);
    EXPECT_EQ(call(src.data(), dst.data()), ORVA_STS_NO_ERR) << what;
    if (place == Place::kEnd) std::copy(dst.begin(), dst.end(), expected.begin());
    EXPECT_TRUE(SameBits(what, expected.data(), dst.data(), out));
  }
}

// `init` makes a state of 40 taps; the sources stand after their delay line, the destinations before theirs.
template <class State, class Tap, class Sample>
void ExpectAnyAddressOfFilter(const std::string& what, auto init, auto run, OrvaStatus (*release)(State*)) {
  State* state = nullptr;
  const std::vector<Tap> taps = RandomArray<Tap>(40, 2);
  ASSERT_EQ(init(taps.data(), &state), ORVA_STS_NO_ERR) << what;
  ExpectAnyAddress<Sample, Sample>(what, 340, 340, [&](const Sample* src, Sample* dst) {
    return run(src + 40, dst, 300, state, src, dst + 300);
  });
  release(state);
}

TEST(Rules, FiltersAtAnyAddress) {
#define FILTER(run, init, Tap, Sample)                                                                              \
  for (int32_t kind : {1, 2})                                                                                       \
    ExpectAnyAddressOfFilter<FIRSRState, Tap, Sample>(                                                              \
        "FIRSR" #run, [=](auto taps, auto state) { return ORVAS_FIRSRInit##init(taps, 40, 300, kind, state); },     \
        ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init);                                                                \
  ExpectAnyAddressOfFilter<FIRMRState, Tap, Sample>(                                                                \
      "FIRMR" #run, [](auto taps, auto state) { return ORVAS_FIRMRInit##init(taps, 40, 1, 0, 1, 0, state); },       \
      ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init)
  FILTER(_32f, _32f, Orva32f, Orva32f);
  FILTER(_16s, _32f, Orva32f, Orva16s);
  FILTER(_64f, _64f, Orva64f, Orva64f);
  FILTER(_32fc, _32fc, Orva32fc, Orva32fc);
  FILTER(_16sc, _32fc, Orva32fc, Orva16sc);
  FILTER(_64fc, _64fc, Orva64fc, Orva64fc);
  FILTER(32f_32fc, 32f_32fc, Orva32f, Orva32fc);
#undef FILTER
}

TEST(Rules, OthersAtAnyAddress) {
#define RESAMPLE(type)                                                                                              \
  {                                                                                                                 \
    ResamplePolyphaseState* state = nullptr;                                                                        \
    ResamplePolyphaseFixedState* fixed = nullptr;                                                                   \
    ORVAS_ResamplePolyphaseInit_##type(16, 60, 0.9f, 6, 0, &state);                                                 \
    ORVAS_ResamplePolyphaseFixedInit_##type(2, 3, 16, 0.9f, 6, &fixed);                                             \
    ExpectAnyAddress<Orva##type, Orva##type>("ResamplePolyphase_" #type, 400, 600, [&](auto src, auto dst) {        \
      double time = 50;                                                                                             \
      int32_t count;                                                                                                \
      return ORVAS_ResamplePolyphase_##type(src, 300, dst, 1.5, 1, &time, &count, state);                           \
    });                                                                                                             \
    ExpectAnyAddress<Orva##type, Orva##type>("ResamplePolyphaseFixed_" #type, 400, 600, [&](auto src, auto dst) {   \
      int64_t time = 150;                                                                                           \
      int32_t count;                                                                                                \
      return ORVAS_ResamplePolyphaseFixed_##type(src, 300, dst, 1, &time, &count, fixed);                           \
    });                                                                                                             \
    ORVAS_ResamplePolyphaseRelease_##type(state);                                                                   \
    ORVAS_ResamplePolyphaseFixedRelease_##type(fixed);                                                              \
  }
#define SPECTRUM(type, Complex, Real)                                                                               \
  ExpectAnyAddress<Orva##type, Complex>("CZT_" #type, 300, 100, [](auto src, auto dst) {                            \
    return ORVAS_CZT_##type(src, 300, dst, 100, {0.6f, 0.8f}, {1, 0});                                              \
  });                                                                                                               \
  ExpectAnyAddress<Orva##type, Real>("Pwelch_" #type, 300, 64, [](auto src, auto dst) {                             \
    return ORVAS_Pwelch_##type(src, nullptr, dst, 300, 0, 64, 0.5);                                                 \
  });                                                                                                               \
  ExpectAnyAddress<Orva##type, Orva##type>("MMul_" #type, 300, 100, [](auto src, auto dst) {                        \
    return ORVAS_MMul_##type(src, src, dst, 10, 10, 30);                                                            \
  });
  RESAMPLE(16s)
  RESAMPLE(32f)
  SPECTRUM(32f, Orva32fc, Orva32f)
  SPECTRUM(64f, Orva64fc, Orva64f)
  SPECTRUM(32fc, Orva32fc, Orva32f)
  SPECTRUM(64fc, Orva64fc, Orva64f)
#undef RESAMPLE
#undef SPECTRUM
  OrvaHilbertSpec* spec = nullptr;
  ORVAS_HilbertInit_32f32fc(300, &spec);
  ExpectAnyAddress<Orva32f, Orva32fc>("Hilbert", 300, 300, [&](auto src, auto dst) {
    return ORVAS_Hilbert_32f32fc(src, dst, 300, spec);
  });
  ORVAS_HilbertRelease_32f32fc(spec);
}

}  // namespace
}  // namespace tzm_test
