// The FFT companion: one-dimensional and split transforms over FFTW's estimate plans.
//
// Three properties of FFTW shape this file.
//  - A plan told to expect any alignment (FFTW_UNALIGNED) loses the vector codelets and runs 2 to 6
//    times slower up to some ten thousand points; choosing a plan by alignment would round differently
//    at different addresses. So every plan is made for aligned arrays, and others go through aligned copies.
//  - A plan is either in place or out of place. A handle holds both.
//  - A split plan is bound to the distance between its real and imaginary arrays unless no part of it
//    copies (see BoundToDistance). Where it is bound, or where it is slower, which is nearly everywhere,
//    split arrays are interleaved, transformed in place and taken apart again.
#include <signal_tzm/companion.h>

#include "frame/vector.h"
#include "helpers.h"

#include <fftw3.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

using namespace tzm;

namespace {

// Below this many points a second thread costs more than it saves (measured on two cores).
constexpr int64_t kThreadedPoints = int64_t{1} << 15;

// Powers of two up to here run out of place on split arrays directly: 1.2 to 1.6 times faster than
// interleaving. Other lengths, and in-place transforms, are faster interleaved (measured).
constexpr int64_t kDirectSplitPoints = 16384;

// Plans that nobody holds are kept for the next caller of the same length, since the one-shot
// operations plan on every call: so many at most, of so many points together, in each precision.
constexpr int kIdlePlans = 32;
constexpr int64_t kIdlePoints = int64_t{1} << 20;

constexpr size_t kScratchAlignment = 64;
constexpr size_t kScratchOnStack = 32768;

// FFTW compares planning addresses and looks at their alignment, but in estimate mode never through them.
alignas(kScratchAlignment) char planningArrays[4][kScratchAlignment];

#define TZM_FFTW(Name, Sample, ComplexSample, prefix)                                  \
  struct Name {                                                                        \
    using Real = Sample;                                                               \
    using Complex = ComplexSample;                                                     \
    using FftwComplex = prefix##_complex;                                              \
    using Plan = prefix##_plan;                                                        \
    using Axis = prefix##_iodim64;                                                     \
    static constexpr auto PlanComplex = prefix##_plan_guru64_dft;                      \
    static constexpr auto PlanForward = prefix##_plan_dft_r2c_1d;                      \
    static constexpr auto PlanInverse = prefix##_plan_dft_c2r_1d;                      \
    static constexpr auto PlanSplit = prefix##_plan_guru64_split_dft;                  \
    static constexpr auto Text = prefix##_sprint_plan;                                 \
    static constexpr auto Free = prefix##_free;                                        \
    static constexpr auto Run = prefix##_execute_dft;                                  \
    static constexpr auto RunForward = prefix##_execute_dft_r2c;                       \
    static constexpr auto RunInverse = prefix##_execute_dft_c2r;                       \
    static constexpr auto RunSplit = prefix##_execute_split_dft;                       \
    static constexpr auto Destroy = prefix##_destroy_plan;                             \
    static constexpr auto AlignmentOf = prefix##_alignment_of;                         \
    static constexpr auto InitThreads = prefix##_init_threads;                         \
    static constexpr auto MakePlannerThreadSafe = prefix##_make_planner_thread_safe;   \
    static constexpr auto Threads = prefix##_planner_nthreads;                         \
    static constexpr auto SetThreads = prefix##_plan_with_nthreads;                    \
    static constexpr auto SetLoop = prefix##_threads_set_callback;                     \
  };
TZM_FFTW(Double, Orva64f, Orva64fc, fftw)
TZM_FFTW(Single, Orva32f, Orva32fc, fftwf)
#undef TZM_FFTW

enum class Kind { kComplex, kForward, kInverse, kSplit, kSplitGeneral };

// What makes two plans the same, general split shapes aside.
struct Key {
  Kind kind;
  int32_t n;
  int32_t sign;
  int threads;
  bool operator==(const Key&) const = default;
};

template <class Fftw>
struct Record {
  Key key{};
  int64_t users = 1;
  Record* next = nullptr;                     // in the list of shared plans
  uintptr_t misaligned = 0;                   // address bits that are zero in an aligned array
  size_t inBytes = 0, outBytes = 0;           // of one array
  typename Fftw::Plan outOfPlace = nullptr;   // of a split plan: on separate arrays, or null
  typename Fftw::Plan inPlace = nullptr;      // of a split plan: on interleaved data
  std::vector<typename Fftw::Axis> axes;      // of a split plan: outermost first
  size_t points = 1;
  size_t scratchBytes = 0;                    // that an execution on unaligned or split arrays needs
  mutable std::atomic<void*> scratch = nullptr;  // a block of that size for the next execution, or null

  bool IsAligned(const auto*... arrays) const {
    return ((reinterpret_cast<uintptr_t>(arrays) | ...) & misaligned) == 0;
  }
  void FreeScratch() { operator delete(scratch.exchange(nullptr), std::align_val_t(kScratchAlignment)); }
  ~Record() {
    FreeScratch();
    if (outOfPlace != nullptr) Fftw::Destroy(outOfPlace);
    if (inPlace != nullptr) Fftw::Destroy(inPlace);
  }
};

// The planner of one precision. All of it, and FFTW's planner, is used under the lock. It needs no
// construction at load time, and no destruction.
template <class Fftw>
struct Planner {
  std::mutex lock;
  int threads = 1;
  Record<Fftw>* shared = nullptr;  // every plan but the general split ones, last used first

  Record<Fftw>* Find(const Key& key) {
    for (Record<Fftw>** link = &shared; *link != nullptr; link = &(*link)->next) {
      if ((*link)->key == key) {
        Record<Fftw>* found = *link;
        *link = found->next;
        ++found->users;
        return Prepend(found);
      }
    }
    return nullptr;
  }

  Record<Fftw>* Prepend(Record<Fftw>* plan) {
    plan->next = shared;
    return shared = plan;
  }

  // Destroys the plans that nobody holds, past the first `count` of `points` together.
  void Trim(int count, int64_t points) {
    for (Record<Fftw>** link = &shared; *link != nullptr;) {
      Record<Fftw>* plan = *link;
      if (plan->users == 0 && (--count < 0 || (points -= plan->key.n) < 0)) {
        *link = plan->next;
        delete plan;
      } else {
        link = &plan->next;
      }
    }
  }
};
template <class Fftw>
constinit Planner<Fftw> planner;

constinit Helpers helpers;

template <class Fftw>
int ThreadsFor(int64_t points) {
  if (points < kThreadedPoints) return 1;
  static const int processors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  return std::min(planner<Fftw>.threads, processors);
}

// FFTW runs a copying step as a transform of two "vectors" that lie `imag - real` apart in the
// planning arrays: the node "r2hc" of the plan's text. All other nodes take both pointers.
template <class Fftw>
bool BoundToDistance(typename Fftw::Plan plan) {
  char* text = Fftw::Text(plan);
  const bool bound = text == nullptr || strstr(text, "r2hc") != nullptr;
  Fftw::Free(text);
  return bound;
}

template <class Fftw>
uintptr_t MisalignedBits() {
  uintptr_t alignment = kScratchAlignment;
  while (alignment > 1 && Fftw::AlignmentOf(reinterpret_cast<typename Fftw::Real*>(alignment / 2)) == 0) alignment /= 2;
  return alignment - 1;
}

// FFTW's plan_with_nthreads begins with a clean-up, fatal to the plans of others, unless this went before.
// Its planner then also takes a lock of its own, for the sake of a process that plans with FFTW itself; the
// loops of such a process's plans take helpers too.
template <class Fftw>
int EnableThreads() {
  const int enabled = Fftw::InitThreads();
  Fftw::MakePlannerThreadSafe();
  Fftw::SetLoop([](void* (*work)(char*), char* jobs, size_t size, int count, void*) {
    helpers.Run(work, jobs, size, count);
  }, nullptr);
  return enabled;
}

size_t Padded(size_t bytes) { return (bytes + kScratchAlignment - 1) / kScratchAlignment * kScratchAlignment; }

// Makes the plans of a record whose key, and whose axes if it is split, are filled in.
template <class Fftw>
bool MakePlans(Record<Fftw>& record, int rank) {
  using Real = typename Fftw::Real;
  using Complex = typename Fftw::FftwComplex;
  using Axis = typename Fftw::Axis;
  const auto real = [](int k) { return reinterpret_cast<Real*>(planningArrays[k]); };
  const auto complex = [](int k) { return reinterpret_cast<Complex*>(planningArrays[k]); };
  const auto [kind, n, sign, threads] = record.key;
  const size_t half = (static_cast<size_t>(n) / 2 + 1) * sizeof(Complex);

  std::vector<Axis> packed = record.axes;
  record.misaligned = MisalignedBits<Fftw>();
  EnableThreads<Fftw>();
  if (threads > 1) helpers.Start(threads - 1);
  const int before = Fftw::Threads();  // the process may plan with FFTW itself
  Fftw::SetThreads(threads);
  if (kind == Kind::kComplex) {
    const Axis axis{n, 1, 1};
    record.inBytes = record.outBytes = n * sizeof(Complex);
    record.outOfPlace = Fftw::PlanComplex(1, &axis, 0, nullptr, complex(0), complex(1), sign, FFTW_ESTIMATE);
    record.inPlace = Fftw::PlanComplex(1, &axis, 0, nullptr, complex(0), complex(0), sign, FFTW_ESTIMATE);
  } else if (kind == Kind::kForward) {
    record.inBytes = n * sizeof(Real);
    record.outBytes = half;
    record.outOfPlace = Fftw::PlanForward(n, real(0), complex(1), FFTW_ESTIMATE);
    record.inPlace = Fftw::PlanForward(n, real(0), complex(0), FFTW_ESTIMATE);
  } else if (kind == Kind::kInverse) {
    record.inBytes = half;
    record.outBytes = n * sizeof(Real);
    record.outOfPlace = Fftw::PlanInverse(n, complex(0), real(1), FFTW_ESTIMATE);
    record.inPlace = Fftw::PlanInverse(n, complex(0), real(0), FFTW_ESTIMATE);
  } else {
    ptrdiff_t stride = 1;
    for (size_t k = packed.size(); k-- > 0; stride *= packed[k].n) packed[k].is = packed[k].os = stride;
    const size_t howmany = packed.size() - rank;
    record.inPlace = Fftw::PlanComplex(rank, packed.data() + howmany, static_cast<int>(howmany), packed.data(),
                                       complex(0), complex(0), FFTW_FORWARD, FFTW_ESTIMATE);
    if (kind == Kind::kSplit && n <= kDirectSplitPoints && (n & (n - 1)) == 0) {
      record.inBytes = record.outBytes = n * sizeof(Real);
      record.outOfPlace = Fftw::PlanSplit(1, packed.data(), 0, nullptr, real(0), real(1), real(2), real(3),
                                          FFTW_ESTIMATE);
      if (record.outOfPlace != nullptr && BoundToDistance<Fftw>(record.outOfPlace)) {
        Fftw::Destroy(record.outOfPlace);
        record.outOfPlace = nullptr;
      }
    }
  }
  Fftw::SetThreads(before);
  const size_t copied = Padded(std::max(record.inBytes, record.outBytes));
  const size_t interleaved = record.points * sizeof(Complex);
  record.scratchBytes = record.outOfPlace == nullptr ? interleaved : (kind == Kind::kSplit ? 4 : 2) * copied;
  return record.inPlace != nullptr && (record.outOfPlace != nullptr || kind >= Kind::kSplit);
}

template <class Fftw>
Record<Fftw>* Plan1d(Kind kind, int32_t n, int32_t sign = 0) {
  if (n < 1) return nullptr;
  auto& state = planner<Fftw>;
  const std::lock_guard guard(state.lock);
  const Key key{kind, n, sign, ThreadsFor<Fftw>(n)};
  if (Record<Fftw>* found = state.Find(key)) return found;
  auto record = std::make_unique<Record<Fftw>>();
  record->key = key;
  record->points = n;
  if (kind == Kind::kSplit) record->axes.push_back({n, 1, 1});
  if (!MakePlans<Fftw>(*record, 1)) return nullptr;
  return state.Prepend(record.release());
}

template <class Fftw>
Record<Fftw>* PlanSplit(int32_t rank, const tzm_fft_iodim* dims, int32_t howmanyRank,
                        const tzm_fft_iodim* howmanyDims) {
  if (rank < 0 || howmanyRank < 0) return nullptr;
  if ((rank > 0 && dims == nullptr) || (howmanyRank > 0 && howmanyDims == nullptr)) return nullptr;
  if (rank == 1 && howmanyRank == 0 && dims->is == 1 && dims->os == 1) return Plan1d<Fftw>(Kind::kSplit, dims->n);

  auto record = std::make_unique<Record<Fftw>>();
  const auto append = [&](const tzm_fft_iodim& dim) {
    // A size that is refused, or a product past 2^59 points, which no memory holds.
    if (dim.n < 1 || record->points > (size_t{1} << 59) / dim.n) return false;
    record->axes.push_back({dim.n, dim.is, dim.os});
    record->points *= dim.n;
    return true;
  };
  if (!std::all_of(howmanyDims, howmanyDims + howmanyRank, append) || !std::all_of(dims, dims + rank, append))
    return nullptr;
  auto& state = planner<Fftw>;
  const std::lock_guard guard(state.lock);
  record->key = {Kind::kSplitGeneral, 0, 0, ThreadsFor<Fftw>(record->points)};
  return MakePlans<Fftw>(*record, rank) ? record.release() : nullptr;
}

template <class Fftw>
void DestroyPlan(Record<Fftw>* plan) {
  if (plan == nullptr) return;
  auto& state = planner<Fftw>;
  const std::lock_guard guard(state.lock);
  if (plan->key.kind == Kind::kSplitGeneral) {
    delete plan;
    return;
  }
  if (--plan->users > 0) return;
  plan->FreeScratch();
  state.Trim(kIdlePlans, kIdlePoints);
}

// An aligned block for one execution, which takes the block that the last one left in the plan: the
// allocator would give larger ones back to the system every time. Execution cannot report that there
// is no memory; it ends the process, as FFTW does when it finds none for its own work areas.
template <class Fftw>
class Scratch {
 public:
  explicit Scratch(const Record<Fftw>& plan) : plan_(plan) {
    if (plan.scratchBytes <= sizeof stack_) return;
    heap_ = plan.scratch.exchange(nullptr);
    if (heap_ == nullptr) heap_ = operator new(plan.scratchBytes, std::align_val_t(kScratchAlignment), std::nothrow);
    if (heap_ != nullptr) return;
    fprintf(stderr, "tzm_fft: no memory for a work area of %zu bytes; give the transform aligned, interleaved arrays\n",
            plan.scratchBytes);
    abort();
  }
  ~Scratch() {
    if (heap_ != nullptr) operator delete(plan_.scratch.exchange(heap_), std::align_val_t(kScratchAlignment));
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  void* At(size_t offset) { return static_cast<char*>(heap_ != nullptr ? heap_ : stack_) + offset; }

 private:
  const Record<Fftw>& plan_;
  void* heap_ = nullptr;
  alignas(kScratchAlignment) char stack_[kScratchOnStack];
};

// The same plan on aligned copies of the arrays that are not aligned, so the same bits.
template <class Fftw, auto run, class In, class Out>
[[gnu::noinline]] void ExecuteCopied(const Record<Fftw>& plan, In* in, Out* out) {
  const bool same = static_cast<void*>(in) == static_cast<void*>(out);
  Scratch scratch(plan);
  In* from = in;
  if (!plan.IsAligned(in)) {
    from = static_cast<In*>(scratch.At(0));
    memcpy(static_cast<void*>(from), in, plan.inBytes);
  }
  Out* to = out;
  if (same) {
    to = reinterpret_cast<Out*>(from);
  } else if (!plan.IsAligned(out)) {
    to = static_cast<Out*>(scratch.At(plan.scratchBytes / 2));
  }
  run(same ? plan.inPlace : plan.outOfPlace, from, to);
  if (to != out) memcpy(static_cast<void*>(out), to, plan.outBytes);
}

template <class Fftw, auto run, class In, class Out>
void Execute(const Record<Fftw>& plan, In* in, Out* out) {
  if (!plan.IsAligned(in, out)) [[unlikely]] return ExecuteCopied<Fftw, run>(plan, in, out);
  const bool same = static_cast<void*>(in) == static_cast<void*>(out);
  run(same ? plan.inPlace : plan.outOfPlace, in, out);
}

// Interleaves the elements of a shape (axes outermost first) in row-major order at `packed`.
template <class Real, class Axis>
void Pack(const Axis* axis, const Axis* end, const Real* re, const Real* im, Real*& packed) {
  if (axis == end) {
    *packed++ = LoadElement(re);
    *packed++ = LoadElement(im);
    return;
  }
  ptrdiff_t k = 0;
  if (axis + 1 == end && axis->is == 1) {
    const Full<Real> d;
    const ptrdiff_t lanes = hn::Lanes(d);
    for (; k + lanes <= axis->n; k += lanes, packed += 2 * lanes) {
      hn::StoreInterleaved2(hn::LoadU(d, re + k), hn::LoadU(d, im + k), d, packed);
    }
  }
  for (; k < axis->n; ++k) Pack(axis + 1, end, re + k * axis->is, im + k * axis->is, packed);
}

// The way back, by the output strides.
template <class Real, class Axis>
void Unpack(const Axis* axis, const Axis* end, const Real*& packed, Real* re, Real* im) {
  if (axis == end) {
    StoreElement(*packed++, re);
    StoreElement(*packed++, im);
    return;
  }
  ptrdiff_t k = 0;
  if (axis + 1 == end && axis->os == 1) {
    const Full<Real> d;
    const ptrdiff_t lanes = hn::Lanes(d);
    for (; k + lanes <= axis->n; k += lanes, packed += 2 * lanes) {
      hn::Vec<decltype(d)> real, imag;
      hn::LoadInterleaved2(d, packed, real, imag);
      hn::StoreU(real, d, re + k);
      hn::StoreU(imag, d, im + k);
    }
  }
  for (; k < axis->n; ++k) Unpack(axis + 1, end, packed, re + k * axis->os, im + k * axis->os);
}

template <class Fftw, class Real>
[[gnu::noinline]] void ExecuteInterleaved(const Record<Fftw>& plan, Real* ri, Real* ii, Real* ro, Real* io) {
  Scratch scratch(plan);
  const auto* axes = plan.axes.data();
  const auto* end = axes + plan.axes.size();
  auto* data = static_cast<typename Fftw::FftwComplex*>(scratch.At(0));
  Real* to = *data;
  Pack(axes, end, ri, ii, to);
  Fftw::Run(plan.inPlace, data, data);
  const Real* from = *data;
  Unpack(axes, end, from, ro, io);
}

template <class Fftw, class Real>
[[gnu::noinline]] void ExecuteSplitCopied(const Record<Fftw>& plan, Real* ri, Real* ii, Real* ro, Real* io) {
  Scratch scratch(plan);
  const auto copy = [&](int k) { return static_cast<Real*>(scratch.At(k * (plan.scratchBytes / 4))); };
  memcpy(copy(0), ri, plan.inBytes);
  memcpy(copy(1), ii, plan.inBytes);
  Fftw::RunSplit(plan.outOfPlace, copy(0), copy(1), copy(2), copy(3));
  memcpy(ro, copy(2), plan.outBytes);
  memcpy(io, copy(3), plan.outBytes);
}

template <class Fftw, class Real>
void ExecuteSplit(const Record<Fftw>& plan, Real* ri, Real* ii, Real* ro, Real* io) {
  const bool separate = ri != ro && ri != io && ii != ro && ii != io;
  if (plan.outOfPlace == nullptr || !separate) return ExecuteInterleaved(plan, ri, ii, ro, io);
  if (!plan.IsAligned(ri, ii, ro, io)) return ExecuteSplitCopied(plan, ri, ii, ro, io);
  Fftw::RunSplit(plan.outOfPlace, ri, ii, ro, io);
}

template <class Fftw>
int InitThreads() {
  const std::lock_guard guard(planner<Fftw>.lock);
  return EnableThreads<Fftw>();
}

template <class Fftw>
void SetThreads(int32_t threads) {
  const std::lock_guard guard(planner<Fftw>.lock);
  planner<Fftw>.threads = std::max(threads, 1);
}

template <class Fftw>
void DropIdlePlans() {
  const std::lock_guard guard(planner<Fftw>.lock);
  planner<Fftw>.Trim(0, 0);
}

__attribute__((destructor)) void Unload() {
  DropIdlePlans<Double>();
  DropIdlePlans<Single>();
  Double::SetLoop(nullptr, nullptr);
  Single::SetLoop(nullptr, nullptr);
  helpers.Stop();
}

// Planning reports every failure as a null plan.
template <class Make>
auto OrNull(Make make) noexcept -> decltype(make()) try {
  return make();
} catch (const std::bad_alloc&) {
  return nullptr;
}

const Record<Double>& RecordOf(tzm_fft_plan plan) { return *reinterpret_cast<Record<Double>*>(plan); }
const Record<Single>& RecordOf(tzm_fftf_plan plan) { return *reinterpret_cast<Record<Single>*>(plan); }
auto* Fftws(Orva64fc* array) { return reinterpret_cast<fftw_complex*>(array); }
auto* Fftws(Orva32fc* array) { return reinterpret_cast<fftwf_complex*>(array); }

}  // namespace

// The arrays and flags given to a planner say nothing: a plan runs on any arrays.
#define TZM_TRANSFORMS(prefix, Fftw, Real, Complex)                                                                    \
  prefix##_plan prefix##_plan_dft_1d(int32_t n, Complex*, Complex*, int32_t sign, uint32_t) {                          \
    if (sign != FFTW_FORWARD && sign != FFTW_BACKWARD) return nullptr;                                                 \
    return reinterpret_cast<prefix##_plan>(OrNull([=] { return Plan1d<Fftw>(Kind::kComplex, n, sign); }));             \
  }                                                                                                                    \
  prefix##_plan prefix##_plan_dft_r2c_1d(int32_t n, Real*, Complex*, uint32_t) {                                       \
    return reinterpret_cast<prefix##_plan>(OrNull([=] { return Plan1d<Fftw>(Kind::kForward, n); }));                   \
  }                                                                                                                    \
  prefix##_plan prefix##_plan_dft_c2r_1d(int32_t n, Complex*, Real*, uint32_t) {                                       \
    return reinterpret_cast<prefix##_plan>(OrNull([=] { return Plan1d<Fftw>(Kind::kInverse, n); }));                   \
  }                                                                                                                    \
  prefix##_plan prefix##_plan_guru_split_dft(int32_t rank, const tzm_fft_iodim* dims, int32_t howmanyRank,             \
                                             const tzm_fft_iodim* howmanyDims, Real*, Real*, Real*, Real*, uint32_t) { \
    return reinterpret_cast<prefix##_plan>(                                                                            \
        OrNull([=] { return PlanSplit<Fftw>(rank, dims, howmanyRank, howmanyDims); }));                                \
  }                                                                                                                    \
  void prefix##_execute_dft(const prefix##_plan plan, Complex* in, Complex* out) {                                     \
    Execute<Fftw, Fftw::Run>(RecordOf(plan), Fftws(in), Fftws(out));                                                   \
  }                                                                                                                    \
  void prefix##_execute_dft_r2c(const prefix##_plan plan, Real* in, Complex* out) {                                    \
    Execute<Fftw, Fftw::RunForward>(RecordOf(plan), in, Fftws(out));                                                   \
  }                                                                                                                    \
  void prefix##_execute_dft_c2r(const prefix##_plan plan, Complex* in, Real* out) {                                    \
    Execute<Fftw, Fftw::RunInverse>(RecordOf(plan), Fftws(in), out);                                                   \
  }                                                                                                                    \
  void prefix##_execute_split_dft(const prefix##_plan plan, Real* ri, Real* ii, Real* ro, Real* io) {                  \
    ExecuteSplit(RecordOf(plan), ri, ii, ro, io);                                                                      \
  }                                                                                                                    \
  void prefix##_destroy_plan(prefix##_plan plan) { DestroyPlan(reinterpret_cast<Record<Fftw>*>(plan)); }               \
  int prefix##_init_threads(void) { return InitThreads<Fftw>(); }                                                      \
  void prefix##_plan_with_nthreads(int32_t nthreads) { SetThreads<Fftw>(nthreads); }
TZM_TRANSFORMS(tzm_fft, Double, Orva64f, Orva64fc)
TZM_TRANSFORMS(tzm_fftf, Single, Orva32f, Orva32fc)
#undef TZM_TRANSFORMS

// Plans made before stay good, and FFTW's own clean-up would destroy those of everybody else in the
// process: what ends is threaded planning, and what goes are the plans that nobody holds.
void tzm_fftf_cleanup_threads(void) {
  SetThreads<Single>(1);
  DropIdlePlans<Single>();
}
