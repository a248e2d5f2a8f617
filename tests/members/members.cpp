#include "members.h"

#include <signal_tzm.h>
#include <signal_tzm/companion.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>

namespace tzm_test {

namespace {

std::vector<Room>& Rooms() {
  static std::vector<Room> rooms;
  return rooms;
}

[[noreturn]] void Refuse(const std::string& name, const char* why) {
  std::fprintf(stderr, "tests/members: %s: %s\n", name.c_str(), why);
  std::abort();
}

Room& RoomOf(const std::string& name) {
  auto& rooms = Rooms();
  auto found = std::find_if(rooms.begin(), rooms.end(), [&](const Room& r) { return r.name == name; });
  return found == rooms.end() ? *rooms.insert(found, Room{name, {}}) : *found;
}

// A function of numbers, and of pointers to numbers, is an operation on arrays.
template <class T>
constexpr bool IsPlain =
    !std::is_pointer_v<T> || (!std::is_pointer_v<ElementOf<T>> && requires { sizeof(ElementOf<T>); });
template <class... A>
void AddPlain(const std::set<std::string>& named, const char* room, const char* name, OrvaStatus (*function)(A...)) {
  if constexpr ((IsPlain<A> && ...))
    if (!named.contains(name)) RoomOf(room).members.push_back(Member(name, function));
}

// Adds the operations of the headers that no row names.
void AddDeclared() {
  std::set<std::string> named;
  for (const Room& room : Rooms())
    for (const Member& row : room.members) named.insert(row.covers.begin(), row.covers.end());
#define DECLARED(room, function) AddPlain(named, #room, #function, function);
#include "declared.inc"
  for (Room& room : Rooms())
    for (Member& row : room.members) {
      const auto twin = std::find_if(room.members.begin(), room.members.end(),
                                     [&](const Member& other) { return other.name == row.Twin(); });
      if (named.contains(row.name) || twin == room.members.end()) continue;
      row.constants = twin->constants;
      row.bad_constants = twin->bad_constants;
      row.min_length = twin->min_length;
      row.constants_first = twin->constants_first, row.scale_first = twin->scale_first;
    }
}

}  // namespace

void Member::Describe(const Role* roles, const Sample* samples, size_t n) {
  if (std::find(roles, roles + n, Role::kLength) == roles + n) Refuse(name, "no length: describe it by a scenario");
  for (size_t i = 0; i < n; ++i) {
    Argument argument{roles[i], samples[i]};
    const bool pointer = roles[i] < Role::kLength || roles[i] == Role::kResult;
    Kind& kind = argument.sample.kind;
    if (pointer && kind == Kind::k16u && name.find("16f") != name.npos) kind = Kind::k16f;
    if (argument.role == Role::kDst && !Twin().empty()) argument.role = Role::kSrcDst;
    arguments.push_back(argument);
  }
}

std::vector<std::string> Names(const std::string& list) {
  std::vector<std::string> names;
  std::istringstream stream(list);
  for (std::string name; std::getline(stream >> std::ws, name, ',');) names.push_back(name);
  return names;
}

bool Member::Has(Role role) const {
  return std::any_of(arguments.begin(), arguments.end(), [=](const Argument& a) { return a.role == role; });
}

size_t Member::ConstantSets() const {
  if (!Has(Role::kConstant)) return 1;
  return constants.empty() ? 3 : constants.size();
}

double Member::ConstantAt(size_t set, size_t position, Sample sample) const {
  if (constants.empty()) {
    if (sample.IsFloat()) return (const double[]){1.25, -0.7, 3e-3}[set];
    return (const double[]){1, 3, 100}[set];
  }
  if (position >= constants[set].size()) Refuse(name, "a set of constants has too few numbers");
  return constants[set][position];
}

std::string Member::Twin() const {
  if (name.ends_with("_IS")) return name.substr(0, name.size() - 2) + "S";
  return name.ends_with("_I") ? name.substr(0, name.size() - 2) : "";
}

Rows::Rows(const char* room, std::initializer_list<MemberList> members) {
  auto& rows = RoomOf(room).members;
  for (const MemberList& some : members) rows.insert(rows.end(), some.rows.begin(), some.rows.end());
}

const std::vector<Room>& AllRooms() {
  static const bool once = (AddDeclared(), true);
  static_cast<void>(once);
  return Rooms();
}

std::vector<const Member*> AllMembers() {
  std::vector<const Member*> all;
  for (const Room& room : AllRooms())
    for (const Member& member : room.members) all.push_back(&member);
  std::sort(all.begin(), all.end(), [](auto* a, auto* b) { return a->name < b->name; });
  for (size_t i = 1; i < all.size(); ++i)
    if (all[i]->name == all[i - 1]->name) Refuse(all[i]->name, "two rows");
  return all;
}

}  // namespace tzm_test
