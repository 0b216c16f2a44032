#ifndef TESSOLV_TESSOLV_H
#define TESSOLV_TESSOLV_H

/// \file
/// The one header to include: all operations of the library and the containers in their signatures.

#include <zeb/lapack/dspev.h>
#include <zeb/misc/histogram.h>

#include <tessolv/core.h>
#include <tessolv/editing.h>
#include <tessolv/geometry.h>
#include <tessolv/io.h>
#include <tessolv/metrics.h>
#include <tessolv/quality.h>
#include <tessolv/spatial.h>
#include <tessolv/topology.h>

#endif
