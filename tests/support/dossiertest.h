#pragma once

#include "support/fichierstest.h"

#include <QString>
#include <QTemporaryDir>

// A temporary program folder for one test: TAVONEL_PROGRAM_DIR points at it
// for the lifetime of the object, and it is removed afterwards.
class DossierProgrammeTest final
{
public:
    DossierProgrammeTest();
    DossierProgrammeTest(const DossierProgrammeTest &) = delete;
    DossierProgrammeTest &operator=(const DossierProgrammeTest &) = delete;

    [[nodiscard]] bool estValide() const { return m_dossier.isValid(); }
    // The folder, ending in a separator.
    [[nodiscard]] QString chemin() const;
    // Writes a file of the folder in Windows-1252 (text given with "\n").
    void ecrire(const QString &nom, const QString &texte) const;

private:
    QTemporaryDir m_dossier;
    VariableTemporaire m_variable; // after m_dossier: it takes its path
};
