#pragma once

#include "components/vintra_dictionary.h"
#include "components/vintra_options.h"

#include <QString>

/// What every window shares and that is never shown: options, dictionary and the two roots of
/// all file paths (each with a trailing '/').
class TFormResourceHolder {
public:
    TVintraOptions VintraOptions;
    TVintraDictionary VintraDictionary;
    QString ExecutablePath;
    QString DataRootPath;

    /// The holder's creation: declare and load the options from `optionsFile`, take the paths,
    /// set the dictionary to the language of the options, and the box captions from it.
    void Create(const QString& optionsFile, const QString& executablePath, const QString& dataRootPath);
    /// ExecutablePath + "Languages/" + language + ".xml".
    QString LanguageFile(const QString& language) const;
};

/// The one holder of the process; set by whoever creates it (the program, the command line, a test).
extern TFormResourceHolder* FormResourceHolder;

/// Dictionary text of the holder, or the default when there is no holder.
QString GetText(const QString& key, const QString& defaultText = QString());
