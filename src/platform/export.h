// Moved: services/export.h.
#pragma once

#include "services/export.h"
