#pragma once

#include <QString>

// The program folder: the folder of the executable, or TAVONEL_PROGRAM_DIR
// when that is set (tests, installations where the binary folder is
// read-only). Always ends in the platform's separator.
[[nodiscard]] QString DossierProgramme();

// Path of a file delivered beside the program under "System" (for example
// "Opérateurs.txt"): the program folder's System folder when it holds the
// file, otherwise the copy in the source tree's data/system folder.
[[nodiscard]] QString FichierSysteme(const QString &nom);
