// The table of members: one row for each exported operation, from which the frame test, the digests and the
// benchmarks are made. docs/adding_an_operation.md tells how to add one.
#pragma once

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "oracle.h"
#include "support/digest.h"
#include "support/exact.h"
#include "support/random.h"

namespace tzm_test {

struct Argument {
  Role role;
  Sample sample;  // the element, for a pointer
};

// Success, or a warning that all work was done under.
constexpr bool IsSuccess(OrvaStatus status) {
  return status == ORVA_STS_NO_ERR || status == ORVA_STS_OVERFLOW_ERR || status == ORVA_STS_UNDERFLOW_ERR ||
         (status >= 300 && status <= 306);
}

// Inputs of a call that a row names itself: sources, masks and single inputs in the order of the arguments, constants,
// exponents of the scale; every exponent of the frame test, and constants of the row, where none are given.
struct Case {
  template <class... T>
  explicit Case(const std::vector<T>&... arrays) : sources{Bytes(arrays)...} {
    ((len = static_cast<int32_t>(arrays.size())), ...);
  }
  Case& With(std::vector<double> values) { constants = std::move(values); return *this; }
  Case& Exponents(std::vector<int> values) { exponents = std::move(values); return *this; }
  Case& Length(int32_t n) { len = n; return *this; }
  Case& NoMask() { no_mask = true; return *this; }

  template <class T>
  static std::vector<unsigned char> Bytes(const std::vector<T>& array) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(array.data());
    return {bytes, bytes + array.size() * sizeof(T)};
  }
  std::vector<std::vector<unsigned char>> sources;
  std::vector<double> constants;
  std::vector<int> exponents;
  int32_t len = 0;
  bool no_mask = false;
};
using RunCase = std::function<void(const Case&)>;
using Cases = void (*)(const RunCase& run);

// Calls a function, whose type it was made from, with these arguments.
using Invoke = OrvaStatus (*)(void (*function)(), const Value* values);
template <class... A>
OrvaStatus InvokeAs(void (*function)(), const Value* values) {
  return [&]<size_t... i>(std::index_sequence<i...>) {
    return reinterpret_cast<OrvaStatus (*)(A...)>(function)(values[i].As<A>()...);
  }(std::index_sequence_for<A...>());
}

// The names in a list with commas.
std::vector<std::string> Names(const std::string& list);

class Member {
 public:
  template <class... A>
  Member(std::string member_name, OrvaStatus (*f)(A...)) : name(member_name), covers{member_name} {
    function = reinterpret_cast<void (*)()>(f);
    invoke = InvokeAs<A...>;
    static constexpr auto kRoles = RolesOf<A...>();
    static constexpr Sample kSamples[] = {SampleOf<ElementOf<A>>()...};
    Describe(kRoles.data(), kSamples, sizeof...(A));
  }

  // A row for operations that work together on a state object, or whose arrays differ in length: `run` calls them
  // over fixed inputs and hands statuses and outputs to the digest; without it there is no digest. The first of the
  // names is the one the row goes by.
  explicit Member(const char* names, void (*run)(Digest&) = nullptr)
      : name(Names(names)[0]), covers(Names(names)), scenario(run), exact(run != nullptr) {}

  bool IsScenario() const { return invoke == nullptr; }
  bool Has(Role role) const;
  // Number of sets of constants to try.
  size_t ConstantSets() const;
  double ConstantAt(size_t set, size_t position, Sample sample) const;
  // The name of the operation that writes to another array; empty when this one does.
  std::string Twin() const;

  std::string name;
  std::vector<std::string> covers;  // the exported names that the row stands for
  std::vector<Argument> arguments;
  void (*function)() = nullptr;
  Invoke invoke = nullptr;
  void (*scenario)(Digest&) = nullptr;
  bool exact = true;

  struct BadSet { std::vector<double> set; OrvaStatus status; };
  Oracle oracle;
  std::vector<std::function<void(const RunCase&)>> cases;
  std::vector<std::vector<double>> constants;
  std::vector<BadSet> bad_constants;
  double start = -77;
  int32_t min_length = 1;
  bool constants_first = false, scale_first = false, length_first = false, in_place = true, any_rounding = false;
  size_t before_length = -1;
  OrvaStatus allocation_status = ORVA_STS_NO_ERR;

 private:
  void Describe(const Role* roles, const Sample* samples, size_t n);
};

struct MemberList {
  MemberList(std::vector<Member> list) : rows(std::move(list)) {}
  MemberList(const Member& row) : rows{row} {}
  std::vector<Member> rows;
};

// Rows that have the same options: the table in docs/adding_an_operation.md tells what each of them is.
template <class... F>
class Members : public MemberList {
 public:
  // Of several functions, their names in a list with commas.
  explicit Members(const char* names, F*... functions) : MemberList(std::vector<Member>()) {
    (rows.push_back(Member(Names(names)[rows.size()], functions)), ...);
  }

  // What each element is: oracle(elements and constants in the order of the call..., At).
  Members& Is(auto oracle) {
    return EachTyped([=](Member& row, auto of) { row.oracle = of.ForElements(oracle); });
  }
  // What the results or the whole destination are: oracle(vectors of the sources and constants ..., At).
  Members& Gives(auto oracle) {
    return EachTyped([=](Member& row, auto of) { row.oracle = of.ForArrays(oracle); });
  }
  // Inputs beside those of the frame test: some(run), or some(T(), run) with the elements' type.
  Members& On(auto some) {
    return EachTyped([=](Member& row, auto of) {
      row.cases.push_back([=](const RunCase& run) {
        if constexpr (requires { some(run); }) some(run);
        else some(typename decltype(of)::Element(), run);
      });
    });
  }
  Members& Constants(std::initializer_list<std::initializer_list<double>> sets) {
    return Each([=](Member& row) { row.constants.assign(sets.begin(), sets.end()); });
  }
  Members& BadConstants(std::initializer_list<std::initializer_list<double>> sets, OrvaStatus status) {
    return Each([=](Member& row) { for (const auto& set : sets) row.bad_constants.push_back({set, status}); });
  }
  Members& Start(double value) { return Each([=](Member& row) { row.start = value; }); }
  Members& MinLength(int32_t n) { return Each([=](Member& row) { row.min_length = n; }); }
  Members& ConstantsFirst() { return Each([](Member& row) { row.constants_first = true; }); }
  Members& ScaleFirst() { return Each([](Member& row) { row.scale_first = true; }); }
  Members& LengthFirst(size_t but = -1) {
    return Each([=](Member& row) { row.length_first = true, row.before_length = but; });
  }
  Members& NotInPlace() { return Each([](Member& row) { row.in_place = false; }); }
  Members& Inexact() { return Each([](Member& row) { row.exact = false; }); }
  Members& AnyRounding() { return Each([](Member& row) { row.any_rounding = true; }); }
  Members& Allocates(OrvaStatus status = ORVA_STS_MEM_ALLOC_ERR) {
    return Each([=](Member& row) { row.allocation_status = status; });
  }

 private:
  Members& EachTyped(auto change) {
    size_t i = 0;
    (change(rows[i++], OracleOf<F>()), ...);
    return *this;
  }
  Members& Each(auto change) {
    for (Member& row : rows) change(row);
    return *this;
  }
};

#define MEMBERS(...) MEMBERS_NAMED(__VA_ARGS__)
#define MEMBERS_NAMED(...) tzm_test::Members(#__VA_ARGS__, __VA_ARGS__)
// A row of operations that work together, by run(digest, operations...).
#define SCENARIO(run, ...) SCENARIO_NAMED(run, __VA_ARGS__)
#define SCENARIO_NAMED(run, ...) \
  tzm_test::Member(#__VA_ARGS__, [](tzm_test::Digest& digest) { run(digest, __VA_ARGS__); })

// A file of rows: `static const Rows rows("arith", {MEMBERS(...), ...});`. Operations on arrays of one length that have
// nothing to tell need none: they are found in the headers; an in-place twin takes the options of its other form.
struct Rows {
  Rows(const char* room, std::initializer_list<MemberList> members);
};

struct Room { std::string name; std::vector<Member> members; };

// Every row, by room and name.
const std::vector<Room>& AllRooms();
std::vector<const Member*> AllMembers();

}  // namespace tzm_test
