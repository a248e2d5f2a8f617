// What is owed by operations that no row can call by itself, those on state objects among them: every pointer of every
// declared operation is looked at first, nothing is released without harm, and a scenario in which every request for
// memory is refused once goes on as if none had been.
#include <gtest/gtest.h>
#include <signal_tzm.h>
#include <signal_tzm/companion.h>

#include <fnmatch.h>

#include <set>
#include <tuple>

#include "members/members.h"
#include "support/faults.h"

namespace tzm_test {
namespace {

template <class T>
constexpr bool kObject = std::is_pointer_v<T> && !requires { sizeof(ElementOf<T>); };

// Pointers by name and position that may be null, and those that are looked at after the length.
struct Exception {
  const char* names;
  size_t position;
  bool optional;
};
constexpr Exception kExceptions[] = {
    {"ORVAS_FIR[SM]R[_3]*", 3, false}, {"ORVAS_FIR[SM]R[_3]*", 4, true}, {"ORVAS_FIR[SM]R[_3]*", 5, true},
    {"ORVAS_FIRLMSInit*", 1, true}, {"ORVAS_FIRLMSInit*", 3, true}, {"ORVAS_FIRSparse_32f", 3, false},
    {"ORVAS_FIRSparseInit*", 3, true}, {"ORVAS_FIRSparseInit*", 4, false}, {"ORVAS_FIRSparseSetDlyLine*", 1, true},
    {"ORVAS_*FixedGetFilter*", 1, true}, {"ORVAS_Pwelch*", 1, true}};

// With the pointer at position i null, all others a place of zeros, and all numbers `number`.
template <size_t i, class... A>
void CheckNull(const char* name, OrvaStatus (*function)(A...), int number) {
  using P = std::tuple_element_t<i, std::tuple<A...>>;
  if constexpr (std::is_pointer_v<P>) {
    OrvaStatus expected = ORVA_STS_NULL_PTR_ERR;
    for (const Exception& exception : kExceptions) {
      if (exception.position != i || fnmatch(exception.names, name, 0) != 0) continue;
      if (exception.optional) return;
      if (number == 0) expected = ORVA_STS_SIZE_ERR;
    }
    alignas(64) static char zeros[4096];
    const auto argument = [&]<class T>(std::type_identity<T>) {
      if constexpr (std::is_pointer_v<T>) return reinterpret_cast<T>(zeros);
      else if constexpr (std::is_arithmetic_v<T>) return static_cast<T>(number);
      else return T{};
    };
    std::tuple<A...> arguments{argument(std::type_identity<A>())...};
    std::get<i>(arguments) = nullptr;
    EXPECT_EQ(std::apply(function, arguments), expected) << name << " argument " << i << " null, numbers " << number;
    for (char byte : zeros) ASSERT_EQ(byte, 0) << name << " wrote";
  }
}
template <class... A>
void CheckPointers(const char* name, OrvaStatus (*function)(A...)) {
  SCOPED_TRACE(name);
  if constexpr (sizeof...(A) == 1 && (kObject<A> && ...)) {
    EXPECT_EQ(function(static_cast<A>(nullptr)...), ORVA_STS_NO_ERR);
  } else {
    [&]<size_t... i>(std::index_sequence<i...>) {
      for (int number : {0, 1}) (CheckNull<i>(name, function, number), ...);
    }(std::index_sequence_for<A...>());
  }
}

TEST(Objects, NullPointersComeFirstAndReleaseOfNoneIsDone) {
  std::set<std::string> rows;
  for (const Member* row : AllMembers())
    if (!row->IsScenario()) rows.insert(row->name);
#define DECLARED(room, function) \
  if (!rows.contains(#function)) CheckPointers(#function, function);
#include "declared.inc"
#undef DECLARED
}

TEST(Objects, RefusedRequestsLeaveNoTrace) {
  for (const Member* row : AllMembers()) {
    if (row->scenario == nullptr) continue;
    SCOPED_TRACE(row->name);
    Digest usual, refused;
    row->scenario(usual);
    refused.make = [](const auto& call) {
      for (int k = 1;; ++k) {
        const int live = LiveBlocks();
        FailRequest(k);
        const OrvaStatus status = call();
        const bool missed = Requests() >= k;
        FailRequest(0);
        if (!missed) return status;
        EXPECT_EQ(status, ORVA_STS_MEM_ALLOC_ERR) << "request " << k;
        EXPECT_EQ(LiveBlocks(), live) << "request " << k;
      }
    };
    const int live = LiveBlocks(), foreign = ForeignReleases();
    row->scenario(refused);
    EXPECT_EQ(refused.Value(), usual.Value());
    EXPECT_EQ(LiveBlocks(), live);
    EXPECT_EQ(ForeignReleases(), foreign);
  }
}

}  // namespace
}  // namespace tzm_test
