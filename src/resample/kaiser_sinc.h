// A sinc under a Kaiser window: the filter of both resamplers.
#pragma once

#include "frame/bessel.h"

#include <cmath>

namespace tzm {

class KaiserSinc {
 public:
  // The cut-off is relative to the angle of At; alpha is the window's parameter.
  KaiserSinc(double cutoff, double alpha) : cutoff_(cutoff), alpha_(alpha), norm_(1 / Bessel(alpha)) {}

  double Centre() const { return cutoff_; }
  // The value at an angle other than 0; `place` runs from 0 at the centre to 1 at the window's end.
  double At(double angle, double place) const {
    const double sinc = sin(angle * cutoff_) / angle;
    return Bessel(alpha_ * __builtin_sqrt(Fma(-place, place, 1.0))) * norm_ * sinc;
  }

 private:
  static double Bessel(double x) {
    const hn::CappedTag<double, 1> one;
    return hn::GetLane(BesselI0(one, hn::Set(one, x)));
  }

  double cutoff_, alpha_, norm_;
};

}  // namespace tzm
