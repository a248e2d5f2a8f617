#include "select.h"

namespace tzm::fft {
template std::unique_ptr<Complex<double>> MakeComplex(size_t n, size_t workers);
}
