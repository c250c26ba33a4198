// TEMP placeholder
#include "patients/schemapatients.h"
QString CheminPatientsMdb(const QString &dossier) { return dossier + QStringLiteral("Patients.mdb"); }
bool CreerBasePatients(QString &) { return false; }
const QStringList &ColonnesSignaletiques() { static QStringList l; return l; }
