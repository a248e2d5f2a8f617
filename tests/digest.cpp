// tests/digest: runs every row of the table over fixed inputs and prints one digest a row, the same on every platform.
//   digest                 print: digest >tests/digests.txt writes them anew
//   digest --check FILE    compare with FILE; lists what is missing or differs, exit status 1
//   digest --names         the exported names that have a row
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>

#include "members/caller.h"

namespace {

using namespace tzm_test;

void Add(Digest& digest, Caller& caller, const Setting& setting) {
  digest.AddStatus(caller.Run(setting));
  const auto outputs = caller.Results();
  const auto arguments = caller.OutputArguments();
  for (size_t i = 0; i < outputs.size(); ++i)
    digest.Add(arguments[i].sample, outputs[i].data(), Caller::Elements(arguments[i], setting.len));
}

std::string DigestOf(const Member& member) {
  Digest digest;
  if (member.IsScenario()) {
    SetCallUnderTest(member.name);
    member.scenario(digest);
  } else {
    Caller caller(member, 1000);
    const size_t scales = member.Has(Role::kScale) ? kDigestScales : 1;
    size_t turn = 0;
    for (int32_t len = member.min_length; len <= 1000; len += len < 40 ? 1 : len / 3)
      for (Variety variety : kVarieties) {
        const size_t now = turn++;
        Add(digest, caller, {.len = len, .variety = variety, .constants = now % member.ConstantSets(),
                             .scale = now % scales});
      }
    for (Variety variety : kVarieties)
      for (size_t constants = 0; constants < member.ConstantSets(); ++constants)
        for (size_t scale = 0; scale < scales; ++scale)
          Add(digest, caller, {.len = 101, .variety = variety, .constants = constants, .scale = scale});
  }
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(digest.Value()));
  return text;
}

int Check(const std::map<std::string, std::string>& actual, const char* path) {
  std::ifstream file(path);
  if (!file) return std::fprintf(stderr, "digest: cannot read %s\n", path), 2;
  std::map<std::string, std::string> expected;
  for (std::string name, digest; file >> name >> digest;) expected[name] = digest;
  for (const auto& [name, digest] : actual) expected.try_emplace(name, "none");
  int bad = 0;
  for (const auto& [name, digest] : expected) {
    const auto found = actual.find(name);
    const std::string made = found == actual.end() ? "no such row" : found->second;
    if (made != digest) std::printf("%s: %s, expected %s\n", name.c_str(), made.c_str(), digest.c_str()), ++bad;
  }
  std::printf("%zu digests, %d missing or different\n", actual.size(), bad);
  return bad == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const bool check = argc == 3 && std::strcmp(argv[1], "--check") == 0;
  const bool names = argc == 2 && std::strcmp(argv[1], "--names") == 0;
  if (argc != 1 && !check && !names) {
    std::fprintf(stderr, "usage: digest [--check FILE | --names]\n");
    return 2;
  }
  std::map<std::string, std::string> digests;
  for (const Member* member : AllMembers()) {
    if (member->exact && !names) digests[member->name] = DigestOf(*member);
    for (size_t i = 0; names && i < member->covers.size(); ++i) std::puts(member->covers[i].c_str());
  }
  if (check) return Check(digests, argv[2]);
  for (const auto& [name, digest] : digests) std::printf("%s %s\n", name.c_str(), digest.c_str());
  return 0;
}
