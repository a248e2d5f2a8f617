#include "members.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tzm_test {

namespace {

std::vector<Room>& Rooms() {
  static std::vector<Room> rooms;
  return rooms;
}

bool Contains(const std::string& name, const char* part) { return name.find(part) != std::string::npos; }

[[noreturn]] void Refuse(const std::string& name, const char* why) {
  std::fprintf(stderr, "tests/members: %s: %s\n", name.c_str(), why);
  std::abort();
}

}  // namespace

void Member::DeduceRoles(const ArgumentType* types, size_t n) {
  const bool in_place_name = name.ends_with("_I") || name.ends_with("_IS");
  const bool scaled = name.ends_with("S") && (name.ends_with("_S") || in_place_name);
  const bool constant_first = Contains(name, "MulC_") || Contains(name, "DivC_") || Contains(name, "DivCRev_");
  size_t length = 0;
  bool dst_seen = !constant_first;
  for (; length < n; ++length) {
    if (types[length].pointer) dst_seen |= !types[length].constant;
    else if (dst_seen && types[length].sample == SampleOf<int32_t>()) break;
  }
  if (length == n) Refuse(name, "no length argument: describe it by a scenario");
  for (size_t i = 0; i < n; ++i) {
    Argument argument{Role::kConstant, types[i].sample};
    if (types[i].pointer) {
      if (argument.sample.kind == Kind::k16u && Contains(name, "16f")) argument.sample.kind = Kind::k16f;
      const Role further = argument.sample == SampleOf<Orva8u>() ? Role::kMask : Role::kInput;
      if (types[i].constant) argument.role = i < length ? Role::kSource : further;
      else if (i > length) argument.role = Role::kResult;
      else argument.role = in_place_name ? Role::kSrcDst : Role::kDst;
    } else if (i == length) {
      argument.role = Role::kLength;
    } else if (scaled && i > length && types[i].sample == SampleOf<double>()) {
      argument.role = Role::kScale;
    }
    arguments.push_back(argument);
  }
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

Rows::Rows(const char* room, std::initializer_list<Members> members) {
  auto& rooms = Rooms();
  auto found = std::find_if(rooms.begin(), rooms.end(), [&](const Room& r) { return r.name == room; });
  if (found == rooms.end()) found = rooms.insert(found, Room{room, {}});
  for (const Members& some : members) found->members.insert(found->members.end(), some.rows.begin(), some.rows.end());
}

const std::vector<Room>& AllRooms() { return Rooms(); }

std::vector<const Member*> AllMembers() {
  std::vector<const Member*> all;
  for (const Room& room : Rooms())
    for (const Member& member : room.members) all.push_back(&member);
  std::sort(all.begin(), all.end(), [](auto* a, auto* b) { return a->name < b->name; });
  for (size_t i = 1; i < all.size(); ++i)
    if (all[i]->name == all[i - 1]->name) Refuse(all[i]->name, "two rows");
  return all;
}

}  // namespace tzm_test
