#pragma once

#include "components/vintra_options.h"

#include <QString>

/// Number of options that DeclareQuillmealOptions declares.
constexpr int QuillmealOptionCount = 162;

/// Declares every option of the program with its type and default, in the order of the design-time
/// list: the frame first, then the families of the other windows.
void DeclareQuillmealOptions(TVintraOptions& options);

/// The options file: configDirOverride (--config-dir), else $QUILLMEAL_CONFIG_DIR, each holding
/// Quillmeal.conf directly; otherwise "<user config folder>/Orvane Team/Hearthnote/Quillmeal.conf".
QString DefaultOptionsFile(const QString& configDirOverride);
