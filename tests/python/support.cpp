// The digest program with Python in the middle: the table's calls go through functions that Python gives. Those on
// states are caught by their names, which the loader finds here before it looks into the library.
#define main DigestProgram
#include "../digest.cpp"
#undef main

#include <signal_tzm.h>

static OrvaStatus (*through)(const Value* values);
static OrvaStatus (*other)(int32_t number, void* const* arguments);

extern "C" {
#include "others.inc"

// The digest of a row, whose calls go through `call`; empty where it has none, or is no operation of the headers.
__attribute__((visibility("default"))) const char* DigestThrough(const char* name, OrvaStatus (*call)(const Value*),
                                                                  decltype(other) call_other) {
  static std::string digest;
  digest.clear();
  through = call;
  other = call_other;
  for (const Member* row : AllMembers()) {
    if (row->name != name || !row->exact || (call == nullptr && !row->IsScenario())) continue;
    Member changed = *row;
    if (!row->IsScenario()) changed.invoke = [](void (*)(), const Value* values) { return through(values); };
    digest = DigestOf(changed);
  }
  return digest.c_str();
}
}
