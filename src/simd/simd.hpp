// The vector layer: the only place that knows processor levels.
#pragma once

#include "simd/arithmetic.hpp"
#include "simd/bit_row.hpp"
#include "simd/byte_taps.hpp"
#include "simd/control.hpp"
#include "simd/convert.hpp"
#include "simd/doubles.hpp"
#include "simd/halves.hpp"
#include "simd/lanes.hpp"
#include "simd/masks.hpp"
#include "simd/pixels.hpp"
#include "simd/planes.hpp"
#include "simd/prefix.hpp"
#include "simd/row.hpp"
#include "simd/sums.hpp"
#include "simd/vec.hpp"
#include "simd/word_sums.hpp"
