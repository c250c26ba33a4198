#pragma once

#include <QString>

// The per-user settings of the program (organisation and application
// "Tavonel"): sections "AdvancedOptions" and "Provider".
[[nodiscard]] QString LireParametreUtilisateur(const QString &section, const QString &cle, const QString &defaut);
void EcrireParametreUtilisateur(const QString &section, const QString &cle, const QString &valeur);

// The system's words for a boolean: "Vrai" and "Faux".
[[nodiscard]] QString TexteBooleen(bool valeur);
