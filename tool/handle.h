// Objects of the library that are given back when their owner goes.
#ifndef TZM_TOOL_HANDLE_H
#define TZM_TOOL_HANDLE_H

#include <memory>

#include "command.h"

namespace tzm {

template <auto kRelease>
struct ReleaseHandle {
  template <class T>
  void operator()(T* object) const {
    kRelease(object);
  }
};

/** A pointer to a state, spec or buffer T that kRelease gives back. */
template <class T, auto kRelease>
using Handle = std::unique_ptr<T, ReleaseHandle<kRelease>>;

/** init(&object) makes the object; throws a Failure that names it unless that succeeds. */
template <class H, class Init>
H MakeHandle(const char* name, const Init& init) {
  typename H::pointer object = nullptr;
  Require(init(&object), name);
  return H(object);
}

}  // namespace tzm

#endif
