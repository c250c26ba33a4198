#pragma once

#include <QList>
#include <QString>

// The kinds of store the user can point the calendar at, as the store
// chooser lists them: the number, the key of its string in the per-user
// section "Provider", the option button, the two labels and the default
// string. Kind 6 is the MariaDB store of our own.
struct LigneFournisseur
{
    int kind = 0;
    QString cle;
    QString option;
    QString labelTop;
    QString labelBottom;
    QString chaine;
};

// The six rows with their default strings, in the order of the kinds.
[[nodiscard]] QList<LigneFournisseur> LignesFournisseursParDefaut();
// The same with the strings saved by this user (defaults where none is).
[[nodiscard]] QList<LigneFournisseur> ChargerLignesFournisseurs();
// Saves every row's string under its key, and the chosen kind and its string
// under "Active" and "ActivePath".
void EnregistrerLignesFournisseurs(const QList<LigneFournisseur> &lignes, int kindActif);

// The connection string of a kind and its string. The file kinds name a file
// of the program folder.
[[nodiscard]] QString ChaineDeConnexion(int kind, const QString &chaine, const QString &dossierProgramme);

// The marker in front of the parameters of a MariaDB store.
inline const QString MarqueMariaDb = QStringLiteral("Provider=MariaDB;");
