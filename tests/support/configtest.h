#pragma once

#include "rules/regles.h"

#include <QTemporaryDir>

// A new Config.mdb made and opened in a temporary folder for the lifetime of
// the object; closed before the folder goes.
class ConfigTest final
{
public:
    ConfigTest();
    ~ConfigTest();
    ConfigTest(const ConfigTest &) = delete;
    ConfigTest &operator=(const ConfigTest &) = delete;

    [[nodiscard]] bool estOuverte() const { return m_ouverte; }
    // The folder, ending in a separator.
    [[nodiscard]] QString dossier() const { return m_dossier.path() + u'/'; }

private:
    QTemporaryDir m_dossier;
    bool m_ouverte = false;
};

// A rule of every week of 2026 on one day (1 Sunday ... 7 Saturday) between
// two times, for a practitioner and an appointment type.
Regle RegleDe2026(int jour, QTime debut, QTime fin, int praticien, int type, const QString &nomPraticien = {});
