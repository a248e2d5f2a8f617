// The digest program with Python in the middle: rows of the table whose calls go through a function that Python gives.
#define main DigestProgram
#include "../digest.cpp"
#undef main

namespace {
OrvaStatus (*through)(const Value* values);
}

// The digest of a row; empty for rows that have none, or that are no single call.
extern "C" __attribute__((visibility("default"))) const char* DigestThrough(const char* name,
                                                                             OrvaStatus (*call)(const Value*)) {
  static std::string digest;
  digest.clear();
  through = call;
  for (const Member* row : AllMembers()) {
    if (row->name != name || row->IsScenario() || !row->exact) continue;
    Member changed = *row;
    changed.invoke = [](void (*)(), const Value* values) { return through(values); };
    digest = DigestOf(changed);
  }
  return digest.c_str();
}
