// What every operation of the table owes its caller: its values, the checks in their order, nothing written before they
// have passed, no access outside the arrays, no dependence on addresses, in place as out of place, no allocation.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>

#include "members/caller.h"
#include "support/faults.h"

namespace tzm_test::frame_test {

constexpr int32_t kMaxLen = 1100;

class Frame : public testing::TestWithParam<const Member*> {
 protected:
  const Member& member = *GetParam();
  Caller caller{member, kMaxLen};
  const Setting usual{.len = std::max(member.min_length, 21)};

  // Calls with the arguments as they stand: the status, and nothing changed.
  void ExpectRefused(OrvaStatus expected, const std::string& what) {
    EXPECT_EQ(caller.Invoke(), expected) << member.name << " " << what;
    EXPECT_TRUE(caller.Untouched(true)) << member.name << " wrote although it was refused: " << what;
  }

  template <class Body>
  void ForEach(Role role, Body body) {
    for (size_t i = 0; i < member.arguments.size(); ++i)
      if (member.arguments[i].role == role) body(i);
  }

  size_t LengthAt() const {
    size_t i = 0;
    while (member.arguments[i].role != Role::kLength) ++i;
    return i;
  }

  void SetBadScales() {
    ForEach(Role::kScale, [&](size_t i) { caller.values[i].Set(-1.0); });
  }

  // What a run gave is what was expected: the status, and every bit.
  void ExpectSame(const Outputs& expected, OrvaStatus expected_status, const Caller& ran, OrvaStatus status,
                  const std::string& what, int32_t len) {
    EXPECT_EQ(status, expected_status) << what;
    const auto actual = ran.Results();
    const auto types = ran.OutputArguments();
    for (size_t i = 0; i < types.size(); ++i) {
      const std::string difference = FirstDifference(types[i].sample, expected[i].data(), actual[i].data(),
                                                     Caller::Elements(types[i], len));
      EXPECT_TRUE(difference.empty()) << what << " output " << i << " " << difference;
    }
  }
  void ExpectSame(const Outputs& expected, OrvaStatus expected_status, OrvaStatus status, const Setting& setting) {
    ExpectSame(expected, expected_status, caller, status, tzm_test::Describe(member, setting), setting.len);
  }
  // Calls with what stands prepared, and holds it against the row's oracle.
  void ExpectValues(Caller& prepared, const std::string& what, int32_t len) {
    Outputs expected;
    OrvaStatus expected_status = ORVA_STS_NO_ERR;
    for (int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      std::fesetround(mode);
      const OrvaStatus status = prepared.Invoke();
      EXPECT_EQ(std::fegetround(), mode);
      std::fesetround(FE_TONEAREST);
      if (mode == FE_TONEAREST) expected_status = prepared.Expect(expected);
      ExpectSame(expected, expected_status, prepared, status, what, len);
      if (!member.any_rounding) break;
    }
  }

  // Every length up to a few blocks and some long ones, with all varieties; sets of constants and scales in turn.
  template <class Body>
  void ForEachSetting(Body body) {
    size_t turn = 0;
    std::vector<int32_t> lengths = {127, 128, 131, 255, 517, 1025};
    for (int32_t len = member.min_length; len <= 70; ++len) lengths.push_back(len);
    for (int32_t len : lengths)
      for (Variety variety : kVarieties) {
        body(Setting{.len = len, .variety = variety, .constants = turn % member.ConstantSets(),
                     .scale = turn % std::size(kScales)});
        ++turn;
        if (HasFailure()) return;
      }
  }
};

TEST_P(Frame, NullPointers) {
  for (int32_t len : {usual.len, member.min_length - 1, 0, -1})
    for (Role role : {Role::kSource, Role::kInput, Role::kDst, Role::kSrcDst, Role::kResult}) {
      ForEach(role, [&](size_t i) {
        Setting setting = usual;
        setting.len = std::max(len, 0);
        caller.Prepare(setting);
        caller.values[LengthAt()].Set(len);
        caller.values[i].Set<void*>(nullptr);
        SetBadScales();
        const bool length_first = len < member.min_length && member.length_first && i != member.before_length;
        ExpectRefused(length_first ? ORVA_STS_SIZE_ERR : ORVA_STS_NULL_PTR_ERR,
                      "argument " + std::to_string(i) + " null, length " + std::to_string(len));
      });
    }
  ForEach(Role::kMask, [&](size_t i) {
    caller.Prepare(usual);
    caller.values[i].Set<void*>(nullptr);
    EXPECT_TRUE(IsSuccess(caller.Invoke())) << member.name << " with argument " << i << " null";
  });
}

TEST_P(Frame, Lengths) {
  for (int32_t len : {0, -1, std::numeric_limits<int32_t>::min(), member.min_length - 1})
    for (bool also_bad : {false, true}) {
      caller.Prepare({.len = std::max(len, 0)});
      caller.values[LengthAt()].Set(len);
      if (also_bad) SetBadScales();
      ExpectRefused(ORVA_STS_SIZE_ERR, "length " + std::to_string(len));
    }
}

TEST_P(Frame, Scales) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (double scale : {0.0, -0.0, -1.0, kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
    ForEach(Role::kScale, [&](size_t i) {
      caller.Prepare(usual);
      caller.values[i].Set(scale);
      ExpectRefused(ORVA_STS_SCALE_ERR, "scale " + std::to_string(scale));
    });
  }
}

TEST_P(Frame, Constants) {
  for (const Member::BadSet& bad : member.bad_constants) {
    caller.Prepare(usual);
    caller.SetConstants(bad.set);
    ExpectRefused(bad.status, "bad constants");
    const Value length = std::exchange(caller.values[LengthAt()], Value{});
    const OrvaStatus bad_length = member.constants_first ? bad.status : ORVA_STS_SIZE_ERR;
    ExpectRefused(bad_length, "bad constants, length 0");
    caller.values[LengthAt()] = length;
    if (!member.Has(Role::kScale)) continue;
    SetBadScales();
    ExpectRefused(member.scale_first ? ORVA_STS_SCALE_ERR : bad.status, "bad constants and scale");
  }
}

TEST_P(Frame, ArraysAndAddresses) {
  ForEachSetting([&](Setting setting) {
    const OrvaStatus status = caller.Run(setting);
    EXPECT_TRUE(IsSuccess(status)) << Describe(member, setting) << " returns " << status;
    EXPECT_TRUE(caller.Untouched(false)) << Describe(member, setting) << " changed a source";
    const auto expected = caller.Results();
    for (Place place : {Place::kStart, Place::kUnaligned}) {
      setting.place = place;
      ExpectSame(expected, status, caller.Run(setting), setting);
    }
  });
}

// The oracle's values and statuses: the usual inputs, new ones for every scale, and those that the row names.
TEST_P(Frame, Values) {
  if (!member.oracle) return;
  ForEachSetting([&](const Setting& setting) {
    caller.Prepare(setting);
    ExpectValues(caller, Describe(member, setting), setting.len);
  });
  const bool scaled = member.Has(Role::kScale);
  uint64_t seed = 0;
  for (size_t scale = 0; scale < (scaled ? std::size(kScales) : 2); ++scale)
    for (int32_t len = member.min_length; len <= 128; len += len % 8 == 1 || scaled ? 1 + len / 12 * 3 : 1)
      for (Variety variety : kVarieties) {
        if (HasFailure()) return;
        ++seed;
        const Setting setting{.len = len, .variety = variety, .constants = seed % member.ConstantSets(), .scale = scale,
                              .place = Place(seed % 3), .seed = seed};
        caller.Prepare(setting);
        ExpectValues(caller, Describe(member, setting), len);
      }
  std::vector<int> exponents(scaled ? 57 : 1);
  std::iota(exponents.begin(), exponents.end(), scaled ? -20 : 0);
  for (int exponent : {-1074, -300, -160, -128, -127, -65, -31, 62, 63, 64, 65, 127, 149, 151, 300, 1023})
    if (scaled) exponents.push_back(exponent);
  int32_t room = 0;
  std::optional<Caller> holder;  // of so much room
  for (const auto& some : member.cases)
    some([&](const Case& inputs) {
      if (inputs.len > room) holder.emplace(member, room = std::max(inputs.len, 1000));
      Caller& with = *holder;
      for (int exponent : inputs.exponents.empty() ? exponents : inputs.exponents) {
        if (HasFailure()) return;
        with.Prepare({.len = inputs.len, .given = &inputs, .exponent = exponent});
        ExpectValues(with, member.name + " case of length " + std::to_string(inputs.len) + ", exponent " +
                     std::to_string(exponent), inputs.len);
      }
    });
}

TEST_P(Frame, InPlace) {
  if (!member.in_place) return;
  const Argument* dst = nullptr;
  ForEach(Role::kDst, [&](size_t i) { dst = dst == nullptr ? &member.arguments[i] : nullptr; });
  if (dst == nullptr) return;
  ForEach(Role::kSource, [&](size_t source) {
    if (member.arguments[source].sample != dst->sample) return;
    ForEachSetting([&](Setting setting) {
      const OrvaStatus status = caller.Run(setting);
      const auto expected = caller.Results();
      setting.alias = static_cast<int>(source);
      ExpectSame(expected, status, caller.Run(setting), setting);
    });
  });
}

TEST_P(Frame, InPlaceTwin) {
  if (!member.Has(Role::kSrcDst)) return;
  for (const Member* twin : AllMembers()) {
    if (twin->name != member.Twin()) continue;
    Caller twin_caller{*twin, kMaxLen};
    ForEachSetting([&](const Setting& setting) {
      const OrvaStatus status = twin_caller.Run(setting);
      ExpectSame(twin_caller.Results(), status, caller.Run(setting), setting);
    });
  }
}

TEST_P(Frame, Allocations) {
  const int requests = ForEachFault([&] {
    const OrvaStatus status = caller.Run(usual);
    return IsSuccess(status) ? ORVA_STS_NO_ERR : status;
  }, member.allocation_status);
  EXPECT_EQ(requests > 0, member.allocation_status != ORVA_STS_NO_ERR)
      << member.name << " makes " << requests << " requests for memory";
}

std::vector<const Member*> Callable() {
  std::vector<const Member*> members = AllMembers();
  std::erase_if(members, [](const Member* member) { return member->IsScenario(); });
  return members;
}
INSTANTIATE_TEST_SUITE_P(All, Frame, testing::ValuesIn(Callable()), [](const auto& info) { return info.param->name; });

}  // namespace tzm_test::frame_test
