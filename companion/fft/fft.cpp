// The FFT companion: plans under the names that the library calls, what they share, and their work areas.
#include <signal_tzm/companion.h>

#include "real.h"
#include "shape.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using namespace tzm;
using namespace tzm::fft;

namespace {

// Plans that nobody holds are kept for the next caller of the same length, since the one-shot
// operations plan on every call: so many at most, of so many points together, in each precision.
constexpr int kIdlePlans = 32;
constexpr int64_t kIdlePoints = int64_t{1} << 20;

constexpr size_t kStackBytes = 4096;  // for the work area of a short transform, whose registers may take 8 KB more

constinit Helpers helpers;

// The work areas of one plan, of which each run takes one. The first is made with the plan; a run that finds none,
// since others have them, makes one more, and waits for one of theirs where there is no memory.
class WorkAreas {
 public:
  explicit WorkAreas(size_t bytes) : bytes_(bytes) {
    if (bytes_ > kStackBytes) ready_ = new (operator new(bytes_, std::align_val_t(kLine))) Area{nullptr};
  }
  ~WorkAreas() {
    operator delete(ready_, std::align_val_t(kLine));
    while (more_ != nullptr) operator delete(std::exchange(more_, more_->next), std::align_val_t(kLine));
  }
  WorkAreas(const WorkAreas&) = delete;

  size_t bytes() const { return bytes_; }
  void* Take() {
    if (Area* area = ready_.exchange(nullptr)) return area;
    ++waiting_;
    for (;;) {
      const int returned = returned_;
      if (Area* area = TakeMore()) return --waiting_, area;
      if (void* area = operator new(bytes_, std::align_val_t(kLine), std::nothrow)) return --waiting_, area;
      returned_.wait(returned);
    }
  }
  void Give(void* area) {
    Area* const given = new (area) Area{nullptr};
    Area* none = nullptr;
    if (!ready_.compare_exchange_strong(none, given)) {
      const std::lock_guard guard(lock_);
      given->next = more_;
      more_ = given;
    }
    if (waiting_ == 0) return;
    ++returned_;
    returned_.notify_one();
  }

 private:
  struct Area {
    Area* next;
  };
  Area* TakeMore() {
    if (Area* area = ready_.exchange(nullptr)) return area;
    const std::lock_guard guard(lock_);
    return more_ == nullptr ? nullptr : std::exchange(more_, more_->next);
  }

  size_t bytes_;
  std::atomic<Area*> ready_ = nullptr;  // one of them, for a run that is alone
  std::atomic<int> waiting_ = 0, returned_ = 0;
  std::mutex lock_;
  Area* more_ = nullptr;  // the others that nobody has
};

enum class Kind { kComplex, kReal, kShape };

// What the plans of one kind, length and number of threads share. A plan is one of the directions.
template <class T>
struct Record {
  struct Plan {
    Record* record;
    bool exchanged;
  };
  Kind kind;
  size_t points;
  size_t threads;
  Plan plans[2] = {{this, false}, {this, true}};
  int64_t users = 1;
  Record* next = nullptr;  // in the list of shared records
  std::unique_ptr<Complex<T>> complex;
  std::unique_ptr<Real<T>> real;
  std::unique_ptr<Shape<T>> shape;
  mutable WorkAreas areas;

  Record(size_t n, size_t workers, std::unique_ptr<Complex<T>> transform)
      : kind(Kind::kComplex), points(n), threads(workers), complex(std::move(transform)),
        areas(complex->Scratch() * sizeof(T)) {}
  Record(size_t n, size_t workers, std::unique_ptr<Real<T>> transform)
      : kind(Kind::kReal), points(n), threads(workers), real(std::move(transform)),
        areas(real->Scratch() * sizeof(T)) {}
  explicit Record(std::unique_ptr<Shape<T>> transform)
      : kind(Kind::kShape), points(0), threads(1), shape(std::move(transform)), areas(shape->Scratch() * sizeof(T)) {}

  // Runs work(scratch).
  [[gnu::noinline]] void WithScratch(auto work) const {
    if (areas.bytes() <= kStackBytes) return OnStack(work);
    void* const area = areas.Take();
    work(static_cast<T*>(area));
    areas.Give(area);
  }

 private:
  static void OnStack(auto work) {
    alignas(kLine) T scratch[kStackBytes / sizeof(T)];
    work(scratch);
  }
};

// The planner of one precision, used under the lock. It needs no construction at load time, and no destruction.
template <class T>
struct Planner {
  std::mutex lock;
  int threads = 1;
  Record<T>* shared = nullptr;  // every record but those of shapes, last used first

  Record<T>* Find(Kind kind, size_t n, size_t workers) {
    for (Record<T>** link = &shared; *link != nullptr; link = &(*link)->next) {
      Record<T>* const found = *link;
      if (found->kind != kind || found->points != n || found->threads != workers) continue;
      *link = found->next;
      ++found->users;
      return Prepend(found);
    }
    return nullptr;
  }

  Record<T>* Prepend(Record<T>* record) {
    record->next = shared;
    return shared = record;
  }

  // Destroys the records that nobody holds, past the first `count` of `points` together.
  void Trim(int count, int64_t points) {
    for (Record<T>** link = &shared; *link != nullptr;) {
      Record<T>* const record = *link;
      if (record->users == 0 && (--count < 0 || (points -= static_cast<int64_t>(record->points)) < 0)) {
        *link = record->next;
        delete record;
      } else {
        link = &record->next;
      }
    }
  }
};
template <class T>
constinit Planner<T> planner;

template <class T>
size_t WorkersFor(size_t points) {
  if (points < kThreadedPoints) return 1;
  static const int processors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  return static_cast<size_t>(std::min(planner<T>.threads, processors));
}

// Planning reports every failure as a null plan.
template <class Make>
auto OrNull(Make make) noexcept -> decltype(make()) try {
  return make();
} catch (const std::bad_alloc&) {
  return nullptr;
}

template <class T>
typename Record<T>::Plan* PlanLine(Kind kind, int32_t n, bool exchanged) {
  if (n < 1) return nullptr;
  const auto length = static_cast<size_t>(n);
  auto& state = planner<T>;
  const std::lock_guard guard(state.lock);
  const size_t workers = WorkersFor<T>(kind == Kind::kReal ? length / 2 : length);
  Record<T>* record = state.Find(kind, length, workers);
  if (record == nullptr) {
    record = kind == Kind::kReal ? new Record<T>(length, workers, std::make_unique<Real<T>>(length, workers))
                                 : new Record<T>(length, workers, MakeComplex<T>(length, workers));
    if (workers > 1) helpers.Start(static_cast<int>(workers) - 1);
    state.Prepend(record);
  }
  return &record->plans[exchanged];
}

template <class T>
typename Record<T>::Plan* PlanSplit(int32_t rank, const tzm_fft_iodim* dims, int32_t howmanyRank,
                                    const tzm_fft_iodim* howmanyDims) {
  if (rank < 0 || howmanyRank < 0) return nullptr;
  if ((rank > 0 && dims == nullptr) || (howmanyRank > 0 && howmanyDims == nullptr)) return nullptr;
  if (rank == 1 && howmanyRank == 0 && dims->is == 1 && dims->os == 1)
    return PlanLine<T>(Kind::kComplex, dims->n, false);
  std::vector<tzm_fft_iodim> axes(howmanyDims, howmanyDims + howmanyRank);
  axes.insert(axes.end(), dims, dims + rank);
  size_t points = 1;
  for (const tzm_fft_iodim& axis : axes) {
    // A size that is refused, or a product past 2^59 points, which no memory holds.
    if (axis.n < 1 || points > (size_t{1} << 59) / static_cast<size_t>(axis.n)) return nullptr;
    points *= static_cast<size_t>(axis.n);
  }
  auto* const record = new Record<T>(std::make_unique<Shape<T>>(std::move(axes), static_cast<size_t>(howmanyRank)));
  return &record->plans[0];
}

template <class T>
void DestroyPlan(typename Record<T>::Plan* plan) {
  if (plan == nullptr) return;
  Record<T>* const record = plan->record;
  if (record->kind == Kind::kShape) {
    delete record;
    return;
  }
  auto& state = planner<T>;
  const std::lock_guard guard(state.lock);
  if (--record->users == 0) state.Trim(kIdlePlans, kIdlePoints);
}

template <class T>
void RunComplex(const Record<T>& record, const View<const T>& in, const View<T>& out) {
  if (record.areas.bytes() == 0) return record.complex->Run(in, out, nullptr, helpers);  // the shortest, at once
  record.WithScratch([&](T* scratch) { record.complex->Run(in, out, scratch, helpers); });
}
template <class T>
void RunShape(const Record<T>& record, const View<const T>& in, const View<T>& out) {
  record.WithScratch([&](T* scratch) { record.shape->Run(in, out, scratch, helpers); });
}
template <class T>
void RunForward(const Record<T>& record, const T* in, T* out) {
  if (record.areas.bytes() == 0) return record.real->Forward(in, out, nullptr, helpers);
  record.WithScratch([=, &record](T* scratch) { record.real->Forward(in, out, scratch, helpers); });
}
template <class T>
void RunInverse(const Record<T>& record, const T* in, T* out) {
  if (record.areas.bytes() == 0) return record.real->Inverse(in, out, nullptr, helpers);
  record.WithScratch([=, &record](T* scratch) { record.real->Inverse(in, out, scratch, helpers); });
}
// Whatever call executes it, a plan is the transform that it was made for: the arrays are as that wants them.
template <class T>
void Execute(const typename Record<T>::Plan& plan, const T* in, T* out) {
  const Record<T>& record = *plan.record;
  if (record.kind == Kind::kShape) return RunShape<T>(record, {Form::kSplit, in, in + 1}, {Form::kSplit, out, out + 1});
  if (record.kind == Kind::kReal)
    return plan.exchanged ? RunInverse<T>(record, in, out) : RunForward<T>(record, in, out);
  const Form form = plan.exchanged ? Form::kExchanged : Form::kPairs;
  RunComplex<T>(record, {form, in, nullptr}, {form, out, nullptr});
}
template <class T>
void ExecuteForward(const typename Record<T>::Plan& plan, const T* in, T* out) {
  if (plan.record->kind != Kind::kReal || plan.exchanged) [[unlikely]] return Execute<T>(plan, in, out);
  RunForward<T>(*plan.record, in, out);
}
template <class T>
void ExecuteInverse(const typename Record<T>::Plan& plan, const T* in, T* out) {
  if (plan.record->kind != Kind::kReal || !plan.exchanged) [[unlikely]] return Execute<T>(plan, in, out);
  RunInverse<T>(*plan.record, in, out);
}
template <class T>
void ExecuteSplit(const typename Record<T>::Plan& plan, const T* ri, const T* ii, T* ro, T* io) {
  const Record<T>& record = *plan.record;
  if (record.kind == Kind::kReal) return Execute<T>(plan, ri, ro);
  const View<const T> in = {Form::kSplit, ri, ii};
  const View<T> out = {Form::kSplit, ro, io};
  return record.kind == Kind::kShape ? RunShape<T>(record, in, out) : RunComplex<T>(record, in, out);
}

template <class T>
void SetThreads(int32_t threads) {
  const std::lock_guard guard(planner<T>.lock);
  planner<T>.threads = std::max(threads, 1);
}
template <class T>
void DropIdlePlans() {
  const std::lock_guard guard(planner<T>.lock);
  planner<T>.Trim(0, 0);
}

// A child must not find a lock held by a thread that stayed with its parent.
void BeforeFork() {
  planner<Orva64f>.lock.lock();
  planner<Orva32f>.lock.lock();
  helpers.BeforeFork();
}
void AfterFork(bool child) {
  helpers.AfterFork(child);
  planner<Orva32f>.lock.unlock();
  planner<Orva64f>.lock.unlock();
}
__attribute__((constructor)) void Load() {
  pthread_atfork(BeforeFork, [] { AfterFork(false); }, [] { AfterFork(true); });
}

__attribute__((destructor)) void Unload() {
  DropIdlePlans<Orva64f>();
  DropIdlePlans<Orva32f>();
  helpers.Stop();
}

template <class Real, class Plan>
const typename Record<Real>::Plan& PlanOf(Plan plan) {
  return *reinterpret_cast<typename Record<Real>::Plan*>(plan);
}

}  // namespace

// The arrays and flags given to a planner say nothing: a plan runs on any arrays.
#define TZM_TRANSFORMS(prefix, Real, Complex)                                                                          \
  prefix##_plan prefix##_plan_dft_1d(int32_t n, Complex*, Complex*, int32_t sign, uint32_t) {                          \
    if (sign != -1 && sign != 1) return nullptr;                                                                       \
    return reinterpret_cast<prefix##_plan>(OrNull([=] { return PlanLine<Real>(Kind::kComplex, n, sign > 0); }));       \
  }                                                                                                                    \
  prefix##_plan prefix##_plan_dft_r2c_1d(int32_t n, Real*, Complex*, uint32_t) {                                       \
    return reinterpret_cast<prefix##_plan>(OrNull([=] { return PlanLine<Real>(Kind::kReal, n, false); }));             \
  }                                                                                                                    \
  prefix##_plan prefix##_plan_dft_c2r_1d(int32_t n, Complex*, Real*, uint32_t) {                                       \
    return reinterpret_cast<prefix##_plan>(OrNull([=] { return PlanLine<Real>(Kind::kReal, n, true); }));              \
  }                                                                                                                    \
  prefix##_plan prefix##_plan_guru_split_dft(int32_t rank, const tzm_fft_iodim* dims, int32_t howmanyRank,             \
                                             const tzm_fft_iodim* howmanyDims, Real*, Real*, Real*, Real*, uint32_t) { \
    return reinterpret_cast<prefix##_plan>(                                                                            \
        OrNull([=] { return PlanSplit<Real>(rank, dims, howmanyRank, howmanyDims); }));                                \
  }                                                                                                                    \
  void prefix##_execute_dft(const prefix##_plan plan, Complex* in, Complex* out) {                                     \
    Execute<Real>(PlanOf<Real>(plan), Parts(in), Parts(out));                                                          \
  }                                                                                                                    \
  void prefix##_execute_dft_r2c(const prefix##_plan plan, Real* in, Complex* out) {                                    \
    ExecuteForward<Real>(PlanOf<Real>(plan), in, Parts(out));                                                          \
  }                                                                                                                    \
  void prefix##_execute_dft_c2r(const prefix##_plan plan, Complex* in, Real* out) {                                    \
    ExecuteInverse<Real>(PlanOf<Real>(plan), Parts(in), out);                                                          \
  }                                                                                                                    \
  void prefix##_execute_split_dft(const prefix##_plan plan, Real* ri, Real* ii, Real* ro, Real* io) {                  \
    ExecuteSplit<Real>(PlanOf<Real>(plan), ri, ii, ro, io);                                                            \
  }                                                                                                                    \
  void prefix##_destroy_plan(prefix##_plan plan) {                                                                     \
    DestroyPlan<Real>(reinterpret_cast<Record<Real>::Plan*>(plan));                                                    \
  }                                                                                                                    \
  int prefix##_init_threads(void) { return 1; }                                                                        \
  void prefix##_plan_with_nthreads(int32_t nthreads) { SetThreads<Real>(nthreads); }
TZM_TRANSFORMS(tzm_fft, Orva64f, Orva64fc)
TZM_TRANSFORMS(tzm_fftf, Orva32f, Orva32fc)
#undef TZM_TRANSFORMS

// Plans made before stay good: what ends is threaded planning, and what goes are the plans that nobody holds.
void tzm_fftf_cleanup_threads(void) {
  SetThreads<Orva32f>(1);
  DropIdlePlans<Orva32f>();
}
