#include "select.h"

namespace tzm::fft {
template std::unique_ptr<Complex<float>> MakeComplex(size_t n, size_t workers);
}
