/// The places that change detection keeps its files at are fixed; --root moves them below a folder.
#ifndef TOOLS_CHANGE_DETECTION_PRIVATE_VIEW_H
#define TOOLS_CHANGE_DETECTION_PRIVATE_VIEW_H

#include <string>

/// With a folder, runs this very command line, without its --root, in a private view of the file system that is kept
/// there, and does not come back. Throws failure when that cannot be done. Without one, does nothing.
void enter_private_view(const std::string& folder);

/// What to add to a message about a file that --root has moved; empty for any other.
std::string private_view_hint(const std::string& path);

#endif
