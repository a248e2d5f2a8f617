// Lengths of which 32 bits overflow: every operation of the table on arrays of two thousand million elements, made of a
// small block of memory that is mapped again and again. Beginning and end of an array are pages of its own; there, and
// in the results, a call has to give what it gives at an ordinary length that ends with the same step.
#include <sys/mman.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "assault.h"
#include "members/caller.h"
#include "support/random.h"

namespace tzm_test {

namespace {

constexpr size_t kBlock = size_t{4} << 20, kOwn = size_t{64} << 10, kPage = 4096, kEdge = kOwn / 16;
constexpr size_t kMost = (size_t{1} << 31) * 16;

void* Map(void* at, size_t bytes, int file, size_t offset) {
  const int flags = MAP_FIXED | MAP_NORESERVE | (file < 0 ? MAP_PRIVATE | MAP_ANONYMOUS : MAP_SHARED);
  void* const mapped = mmap(at, bytes, PROT_READ | PROT_WRITE, flags, file, static_cast<off_t>(offset));
  if (mapped == MAP_FAILED) std::perror("assault: mmap"), std::exit(2);
  return mapped;
}

// Addresses for one array, which all lie on one block but for the pages at both ends.
class Slot {
 public:
  Slot() : file_(memfd_create("assault", 0)) {
    if (file_ < 0 || ftruncate(file_, kBlock) != 0) std::perror("assault: memfd_create"), std::exit(2);
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    base_ = static_cast<char*>(mmap(nullptr, kMost + kBlock, PROT_NONE, flags, -1, 0));
    if (base_ == MAP_FAILED) std::perror("assault: no addresses"), std::exit(2);
    for (size_t at = 0; at < kMost; at += kBlock) Map(base_ + at, kBlock, file_, 0);
    Map(base_, kOwn, -1, 0);
  }
  // An array of so many bytes, its middle and its ends filled; a page behind it is inaccessible.
  char* Take(size_t bytes) {
    if (tail_ != nullptr)
      for (char* page = tail_; page < tail_ + kOwn + 3 * kPage; page += kPage)
        Map(page, kPage, file_, static_cast<size_t>(page - base_) % kBlock);
    tail_ = base_ + (bytes - kOwn) / kPage * kPage;
    Map(tail_, kOwn + 2 * kPage, -1, 0);
    mprotect(base_ + (bytes + kPage - 1) / kPage * kPage, kPage, PROT_NONE);
    return base_;
  }

 private:
  int file_;
  char *base_, *tail_ = nullptr;
};

// What depends on the length itself has no small counterpart: only its status is looked at.
bool DependsOnLength(const std::string& name) {
  for (const char* part : {"Mean", "StdDev", "Jaehne", "_Win", "Tone", "Norm_L2", "NormDiff_L2"})
    if (name.find(part) != std::string::npos) return true;
  return false;
}

// One call at a length: the elements of both ends of all outputs, and the status.
struct Ends {
  std::vector<unsigned char> bytes;
  OrvaStatus status;
};
Ends Run(const Member& member, int32_t len, std::vector<Slot>& slots) {
  std::vector<Value> values(member.arguments.size());
  struct Output { const char* data; size_t size; bool array; };
  std::vector<Output> outputs;
  size_t slot = 0, constant = 0, seed = 0;
  static Value results[8];
  for (size_t i = 0; i < values.size(); ++i) {
    const Argument& argument = member.arguments[i];
    const size_t size = argument.sample.Size(), n = static_cast<size_t>(len);
    if (argument.role == Role::kLength) values[i].Set(len);
    else if (argument.role == Role::kScale) values[i].Set(4.0);
    else if (argument.role == Role::kConstant) {
      for (size_t part = 0; part < argument.sample.parts; ++part)
        StorePart(argument.sample.kind, values[i].bytes + part * argument.sample.PartSize(),
                  member.ConstantAt(0, constant++, argument.sample));
    } else if (argument.role == Role::kResult || argument.role == Role::kInput) {
      std::memset(results[i].bytes, 0, sizeof results[i].bytes);
      values[i].Set<void*>(results[i].bytes);
      if (argument.role == Role::kResult) outputs.push_back({reinterpret_cast<char*>(results[i].bytes), size, false});
    } else {
      char* const data = slots[slot++].Take(n * size);
      const bool neutral = member.Has(Role::kResult) && member.name.find("SumLn") == std::string::npos;
      // The block once, by a part of the array in which it is mapped as a whole.
      for (size_t at = 0; at < 2 * kBlock / argument.sample.PartSize(); ++at)
        StorePart(argument.sample.kind, data + kBlock + at * argument.sample.PartSize(), neutral ? 0 : 1);
      for (char* end : {data, data + (n - kEdge) * size}) {
        Random random(++seed);
        Fill(random, argument.sample, Variety::kModerate, end, kEdge);
        if (argument.role == Role::kMask)
          for (size_t at = 0; at < kEdge; ++at) end[at] = end[at] % 3 == 0;
      }
      if (argument.role == Role::kMask) std::memset(data + kBlock, 0, 2 * kBlock);
      values[i].Set<void*>(data);
      if (argument.role == Role::kDst || argument.role == Role::kSrcDst) outputs.push_back({data, size, true});
    }
  }
  Ends ends{{}, member.invoke(member.function, values.data())};
  for (const auto& [data, size, array] : outputs) {
    ends.bytes.insert(ends.bytes.end(), data, data + (array ? kEdge : 1) * size);
    const char* const last = data + (static_cast<size_t>(len) - kEdge) * size;
    if (array) ends.bytes.insert(ends.bytes.end(), last, last + kEdge * size);
  }
  return ends;
}

}  // namespace

int Huge(const std::vector<std::string>& names) {
  std::vector<Slot> slots(4);
  int failed = 0, calls = 0;
  for (const Member* member : AllMembers()) {
    if (member->IsScenario() || (!names.empty() && std::find(names.begin(), names.end(), member->name) == names.end()))
      continue;
    for (int32_t len : {INT32_MAX, (1 << 30) + 1}) {
      constexpr int32_t kSteps = 6144;  // a multiple of every step of a contract
      const int32_t small = (3 << 22) / kSteps * kSteps * 2 + len % (2 * kSteps);
      SetCallUnderTest(member->name + " length " + std::to_string(len));
      const Ends expected = Run(*member, small, slots), actual = Run(*member, len, slots);
      const bool same = DependsOnLength(member->name) || expected.bytes == actual.bytes;
      ++calls;
      if (expected.status == actual.status && same) continue;
      ++failed;
      std::printf("%s: length %d differs from length %d: statuses %d and %d%s\n", member->name.c_str(), len, small,
                  actual.status, expected.status, same ? "" : ", values too");
    }
  }
  std::printf("huge: %d calls, %d of them wrong\n", calls, failed);
  return calls == 0 || failed != 0;
}

}  // namespace tzm_test
