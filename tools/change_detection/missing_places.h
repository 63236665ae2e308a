// SPDX-License-Identifier: Apache-2.0

/// What is missing where a load and a refresh write: a controller's places, on a machine that may be none.
#ifndef TOOLS_CHANGE_DETECTION_MISSING_PLACES_H
#define TOOLS_CHANGE_DETECTION_MISSING_PLACES_H

#include <string>

/// The places that a refresh could not use here, each with what it could not do, in one line; empty where it could.
std::string missing_places();

/// Whose the marker is that memory rows were deleted, where it cannot be renewed because it is somebody else's; else
/// empty. In one line.
std::string foreign_marker();

#endif
