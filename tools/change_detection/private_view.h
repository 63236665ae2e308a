// SPDX-License-Identifier: Apache-2.0

/// The places that change detection keeps its files at are fixed; --root moves them below a folder.
#ifndef TOOLS_CHANGE_DETECTION_PRIVATE_VIEW_H
#define TOOLS_CHANGE_DETECTION_PRIVATE_VIEW_H

#include <string>
#include <vector>

/// Notes the words of this process's command line, which enter_private_view() repeats. To be called once, at the start.
void remember_command_line(int argc, char** argv);

/// With a folder, runs this very command line, without its --root, in a private view of the file system that is kept
/// there, and does not come back. What stands at `kept`, the program's files and the working directory stay visible,
/// also below /tmp. Throws failure when that cannot be done. Without a folder, does nothing.
void enter_private_view(const std::string& folder, const std::vector<std::string>& kept);

/// What to add to a message about a file that --root has moved: where it is; empty for any other.
std::string private_view_hint(const std::string& path);

#endif
