// Failure injection: a test program that links this stands before the companions' allocators and planners, counts the
// blocks and plans that are alive, and refuses a chosen request.
#pragma once

#include <gtest/gtest.h>
#include <signal_tzm/status.h>

namespace tzm_test {

// Refuses the k-th request (1 the first) of this thread from now on; 0 refuses none. Counts anew.
void FailRequest(int k);
// Requests since FailRequest.
int Requests();
// Blocks and plans that were taken and not given back.
int LiveBlocks();
// Blocks or plans given back that were not alive, since the program began.
int ForeignReleases();

// The status of a call whose first request is refused: 9 says that its sizes were accepted.
template <class Call>
OrvaStatus WithoutMemory(Call call) {
  FailRequest(1);
  const OrvaStatus status = call();
  FailRequest(0);
  return status;
}

// Runs `call` with its first, second, ... request refused until it gets all it asks for. Each refused run must return
// `status` and leave nothing alive; so must the last one, which returns `success`: a call that makes an object releases
// it itself when it succeeds. Returns the number of requests.
template <class Call>
int ForEachFault(Call call, OrvaStatus status = ORVA_STS_MEM_ALLOC_ERR, OrvaStatus success = ORVA_STS_NO_ERR) {
  const int live = LiveBlocks(), foreign = ForeignReleases();
  for (int k = 1;; ++k) {
    FailRequest(k);
    const OrvaStatus actual = call();
    const int requests = Requests();
    FailRequest(0);
    EXPECT_EQ(LiveBlocks(), live) << "leaked with request " << k << " refused";
    EXPECT_EQ(ForeignReleases(), foreign) << "released what it did not own, with request " << k << " refused";
    EXPECT_EQ(actual, requests < k ? success : status) << "with request " << k << " refused";
    if (requests < k || testing::Test::HasFailure()) return requests;
  }
}

// ForEachFault for an Init that makes a State and its Release: a refused Init leaves the pointer alone, or null where
// it `clears` it.
template <class State, class Init>
int ForEachFaultOfInit(Init init, OrvaStatus (*release)(State*), bool clears = false) {
  return ForEachFault([=] {
    State* const before = reinterpret_cast<State*>(8);
    State* state = before;
    const OrvaStatus status = init(&state);
    if (status == ORVA_STS_NO_ERR) return release(state);
    EXPECT_EQ(state, clears ? nullptr : before);
    return status;
  });
}

}  // namespace tzm_test
