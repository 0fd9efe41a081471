#pragma once

#include <QString>

/// The text of the system information window: the label of each count directly followed by the
/// number, lines ending in "\n", in the fixed order of the blocks.
QString SystemInfoText();
