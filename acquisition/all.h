// Everything of acquisition/ for applications.
#pragma once

#include "acquisition/acq_image.h"
