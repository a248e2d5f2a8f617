// The table of members: one row for each exported operation, from which the frame test, the digests
// and the benchmarks are made. docs/adding_an_operation.md tells how to add one.
#pragma once

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

#include <cstring>
#include <functional>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "support/digest.h"
#include "support/sample.h"

namespace tzm_test {

enum class Role {
  kSource,      // const pointer before the length: `len` elements
  kMask,        // const pointer to bytes after the length: `len` elements, may be null
  kInput,       // any other const pointer after the length: one element
  kDst,         // pointer before the length: `len` elements
  kSrcDst,      // the same in a member whose name ends in _I or _IS
  kLength,      // the first int32_t; in the ...C families, the first one after the destination
  kResult,      // pointer after the length: one element
  kConstant,    // a sample, a level, a selector
  kScale        // double after the length in a member whose name ends in _S or _IS
};

struct Argument {
  Role role;
  Sample sample;  // the element, for a pointer
};

// One argument of a call.
struct Value {
  alignas(8) unsigned char bytes[16];
  template <class T>
  T As() const {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
  }
  template <class T>
  void Set(const T& value) {
    static_assert(sizeof(T) <= sizeof bytes);
    std::memcpy(bytes, &value, sizeof value);
  }
};

struct ArgumentType {
  bool pointer, constant;
  Sample sample;
};

template <class T>
constexpr ArgumentType ArgumentTypeOf() {
  using Element = std::remove_cv_t<std::remove_pointer_t<T>>;
  return {std::is_pointer_v<T>, std::is_const_v<std::remove_pointer_t<T>>, SampleOf<Element>()};
}

// Success, or a warning that all work was done under.
constexpr bool IsSuccess(OrvaStatus status) {
  return status == ORVA_STS_NO_ERR || status == ORVA_STS_OVERFLOW_ERR || status == ORVA_STS_UNDERFLOW_ERR ||
         (status >= 300 && status <= 306);
}

// One benchmark: what to time, and how many bytes of arrays it reads and writes.
struct Timed {
  std::function<OrvaStatus()> run;
  int64_t bytes;
};

class Member {
 public:
  template <class... A>
  Member(std::string member_name, OrvaStatus (*f)(A...)) : name(member_name), covers{member_name} {
    function = reinterpret_cast<void (*)()>(f);
    invoke = [](void (*erased)(), const Value* values) {
      return [&]<size_t... i>(std::index_sequence<i...>) {
        return reinterpret_cast<OrvaStatus (*)(A...)>(erased)(values[i].As<A>()...);
      }(std::index_sequence_for<A...>());
    };
    static constexpr ArgumentType kTypes[] = {ArgumentTypeOf<A>()...};
    DeduceRoles(kTypes, sizeof...(A));
  }

  // A row for operations that work together on a state object, or whose arrays differ in length:
  // `run` calls them over fixed inputs and hands statuses and outputs to the digest; without it there is
  // no digest. The first name is the one the row goes by.
  Member(std::initializer_list<const char*> names, void (*run)(Digest&) = nullptr)
      : name(*names.begin()), covers(names.begin(), names.end()), scenario(run), exact(run != nullptr) {}

  // Values of the constants in the order of the call, a complex one as two numbers; each set is tried.
  Member& Constants(std::initializer_list<std::initializer_list<double>> sets) {
    constants.assign(sets.begin(), sets.end());
    return *this;
  }
  // Constants that the member answers with `status`.
  Member& BadConstants(std::initializer_list<double> set, OrvaStatus status) {
    bad_constants.push_back({set, status});
    return *this;
  }
  // What inputs of one element hold, and results and destinations before the call.
  Member& Start(double value) { start = value; return *this; }
  Member& MinLength(int32_t n) { min_length = n; return *this; }
  // The member looks at its scale before its constants, at its length before its pointers (but after the
  // pointer at position `but`).
  Member& ScaleFirst() { scale_first = true; return *this; }
  Member& LengthFirst(size_t but = -1) { length_first = true; before_length = but; return *this; }
  // The destination may not be a source array.
  Member& NotInPlace() { in_place = false; return *this; }
  // Results come from the FFT companion: no digest.
  Member& Inexact() { exact = false; return *this; }
  // The member allocates, and returns `status` when it cannot. Every other one must not allocate.
  Member& Allocates(OrvaStatus status = ORVA_STS_MEM_ALLOC_ERR) { allocation_status = status; return *this; }
  // What to time for a scenario at a length.
  Member& Benchmark(std::function<Timed(int32_t)> make) { timed = std::move(make); return *this; }

  bool IsScenario() const { return invoke == nullptr; }
  bool Has(Role role) const;
  // Number of sets of constants to try.
  size_t ConstantSets() const;
  double ConstantAt(size_t set, size_t position, Sample sample) const;

  std::string name;
  std::vector<std::string> covers;  // the exported names that the row stands for
  std::vector<Argument> arguments;
  void (*function)() = nullptr;
  OrvaStatus (*invoke)(void (*)(), const Value*) = nullptr;
  void (*scenario)(Digest&) = nullptr;
  bool exact = true;
  std::function<Timed(int32_t)> timed;

  struct BadSet {
    std::vector<double> set;
    OrvaStatus status;
  };
  std::vector<std::vector<double>> constants;
  std::vector<BadSet> bad_constants;
  double start = -77;
  int32_t min_length = 1;
  bool scale_first = false, length_first = false, in_place = true;
  size_t before_length = -1;
  OrvaStatus allocation_status = ORVA_STS_NO_ERR;

 private:
  void DeduceRoles(const ArgumentType* types, size_t n);
};

// Rows that have the same options.
class Members {
 public:
  Members(const Member& member) : rows{member} {}
  // Of several functions, their names in a list with commas.
  template <class... F>
  Members(const char* names, F*... functions) {
    std::istringstream list(names);
    const auto next = [&] {
      std::string name;
      std::getline(list >> std::ws, name, ',');
      return name;
    };
    (rows.push_back(Member(next(), functions)), ...);
  }
  // Gives each row the option: Each(&Member::MinLength, 3).
  template <class... A>
  Members& Each(Member& (Member::*option)(A...), std::type_identity_t<A>... arguments) {
    for (Member& row : rows) (row.*option)(arguments...);
    return *this;
  }

  std::vector<Member> rows;
};

#define MEMBER(function) tzm_test::Member(#function, function)
#define MEMBERS(...) MEMBERS_NAMED(__VA_ARGS__)
#define MEMBERS_NAMED(...) tzm_test::Members(#__VA_ARGS__, __VA_ARGS__)

// A file of rows: `static const Rows rows("arith", {MEMBER(...), MEMBERS(...), ...});`
struct Rows {
  Rows(const char* room, std::initializer_list<Members> members);
};

struct Room {
  std::string name;
  std::vector<Member> members;
};

// Every row, by room and name.
const std::vector<Room>& AllRooms();
std::vector<const Member*> AllMembers();

}  // namespace tzm_test
