#pragma once

#include <customipp/types.h>
#include <tarnimg/export.h>

/** Throws std::runtime_error with the status' text for any status but 0: a warning is a failure too. */
TARNIMG_EXPORT void checkIPPStatus(IppStatus i_status);
