// What operations owe that no row calls by itself, those on states among them: pointers are looked at before all else,
// Release of nothing succeeds, and a scenario goes on after each refused request for memory as if none had been.
#include <gtest/gtest.h>
#include <signal_tzm.h>
#include <signal_tzm/companion.h>

#include <fnmatch.h>

#include <algorithm>
#include <set>
#include <vector>

#include "members/members.h"
#include "support/faults.h"

namespace tzm_test::objects_test {

template <class T>
constexpr bool kObject = std::is_pointer_v<T> && !requires { sizeof(ElementOf<T>); };

// Pointers by name and position that may be null, and those that are looked at after the length.
struct Exception { const char* names; size_t position; bool optional; };
constexpr Exception kExceptions[] = {
    {"ORVAS_FIR[SM]R[_3]*", 3, false}, {"ORVAS_FIR[SM]R[_3]*", 4, true}, {"ORVAS_FIR[SM]R[_3]*", 5, true},
    {"ORVAS_FIRLMSInit*", 1, true}, {"ORVAS_FIRLMSInit*", 3, true}, {"ORVAS_FIRSparse_32f", 3, false},
    {"ORVAS_FIRSparseInit*", 3, true}, {"ORVAS_FIRSparseInit*", 4, false}, {"ORVAS_FIRSparseSetDlyLine*", 1, true},
    {"ORVAS_*FixedGetFilter*", 1, true}, {"ORVAS_Pwelch*", 1, true}};

// An operation without its types; `calls` are its arguments: pointers to zeros, and all numbers 0, or 1.
struct Operation {
  const char* name;
  void (*function)();
  Invoke invoke;
  std::vector<bool> pointers;
  std::vector<Value> calls[2];
};
alignas(64) char zeros[4096];

void CheckPointers(const Operation& operation, bool release) {
  for (int number : {0, 1})
    for (size_t i = 0; i < operation.pointers.size(); ++i) {
      if (!operation.pointers[i]) continue;
      OrvaStatus expected = release ? ORVA_STS_NO_ERR : ORVA_STS_NULL_PTR_ERR;
      bool optional = false;
      for (const Exception& exception : kExceptions) {
        if (exception.position != i || fnmatch(exception.names, operation.name, 0) != 0) continue;
        optional = exception.optional;
        if (number == 0) expected = ORVA_STS_SIZE_ERR;
      }
      if (optional) continue;
      SCOPED_TRACE(testing::Message() << operation.name << " argument " << i << " null, numbers " << number);
      std::vector<Value> values = operation.calls[number];
      values[i].Set(nullptr);
      EXPECT_EQ(operation.invoke(operation.function, values.data()), expected);
      EXPECT_TRUE(std::all_of(std::begin(zeros), std::end(zeros), [](char byte) { return byte == 0; }));
    }
}

template <class T>
Value Argument(int number) {
  Value value{};
  if constexpr (std::is_pointer_v<T>) value.Set(static_cast<void*>(zeros));
  else if constexpr (std::is_arithmetic_v<T>) value.Set(static_cast<T>(number));
  return value;
}
template <class... A>
void CheckPointersUnless(const std::set<std::string>& rows, const char* name, OrvaStatus (*f)(A...)) {
  if (rows.contains(name)) return;
  constexpr bool kRelease = sizeof...(A) == 1 && (kObject<A> && ...);
  CheckPointers({name, reinterpret_cast<void (*)()>(f), InvokeAs<A...>, {std::is_pointer_v<A>...},
                 {{Argument<A>(0)...}, {Argument<A>(1)...}}}, kRelease);
}
TEST(Objects, NullPointersComeFirstAndReleaseOfNoneIsDone) {
  std::set<std::string> rows;
  for (const Member* row : AllMembers())
    if (!row->IsScenario()) rows.insert(row->name);
#define DECLARED(room, function) CheckPointersUnless(rows, #function, function);
#include "declared.inc"
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

}  // namespace tzm_test::objects_test
