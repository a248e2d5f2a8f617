// Random calls over all operations of the table, from a seed: lengths, samples, constants, scales, places, arrays that
// are one, null pointers and bad lengths. One digest an operation, the same of every build on every machine.
#include <algorithm>
#include <charconv>
#include <cinttypes>
#include <cstdio>

#include "members/caller.h"
#include "support/digest.h"

namespace tzm_test {

namespace {

void Draw(Random& random, const Member& member, Caller& caller, Digest& digest) {
  const uint64_t kind = random.Below(100);
  Setting setting{.len = member.min_length + static_cast<int32_t>(random.Below(kind < 5 ? 2900 : kind < 40 ? 16 : 150)),
                  .variety = kVarieties[random.Below(3)],
                  .constants = random.Below(member.ConstantSets()),
                  .scale = random.Below(std::size(kScales)),
                  .place = Place(random.Below(3)),
                  .seed = random.Next() | 1};
  caller.Prepare(setting);
  const uint64_t trouble = random.Below(40);
  for (size_t i = 0; i < member.arguments.size(); ++i) {
    const Role role = member.arguments[i].role;
    if (role == Role::kLength && trouble == 0) caller.values[i].Set(-static_cast<int32_t>(random.Below(3)));
    else if (role == Role::kScale && trouble == 1) caller.values[i].Set(-1.0);
    else if (role == Role::kLength || role == Role::kConstant || role == Role::kScale) continue;
    else if (trouble == 2 && random.Below(2) == 0) caller.values[i].Set<void*>(nullptr);
  }
  if (trouble == 3 && !member.bad_constants.empty()) caller.SetConstants(member.bad_constants[0].set);
  digest.AddStatus(caller.Invoke());
  if (!member.exact) return;
  const auto outputs = caller.Results();
  const auto arguments = caller.OutputArguments();
  for (size_t i = 0; i < outputs.size(); ++i)
    digest.Add(arguments[i].sample, outputs[i].data(), Caller::Elements(arguments[i], setting.len));
}

}  // namespace

// [SEED [CALLS]]
int Sweep(const std::vector<std::string>& arguments) {
  uint64_t given[] = {1, 500};
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& text = arguments[i];
    if (i < std::size(given)) {
      const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), given[i]);
      if (error == std::errc() && end == text.data() + text.size() && given[i] > 0) continue;
    }
    std::fprintf(stderr, "assault: sweep takes a seed and a number of calls, not '%s'\n", text.c_str());
    return 2;
  }
  const auto [seed, calls] = given;
  for (const Member* member : AllMembers()) {
    if (member->IsScenario()) continue;
    Digest digest, name;
    name.Add(member->name.data(), member->name.size());
    Random random(seed ^ name.Value());
    Caller caller(*member, 3000);
    for (uint64_t call = 0; call < calls; ++call) Draw(random, *member, caller, digest);
    std::printf("%s %016" PRIx64 "\n", member->name.c_str(), digest.Value());
  }
  return 0;
}

}  // namespace tzm_test
