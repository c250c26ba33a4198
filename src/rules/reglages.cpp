#include "rules/reglages.h"

#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/nombres.h"

namespace {

const QString ouverture = QStringLiteral("Ouverture");

QString sectionType(int i)
{
    return QStringLiteral("RDVType%1").arg(i + 1);
}

QString sectionPraticien(int i)
{
    return QStringLiteral("Praticien%1").arg(i + 1);
}

} // namespace

quint32 LireCouleur(const QString &texte)
{
    return static_cast<quint32>(LireEntier(texte)) & 0xFFFFFF;
}

ReglagesCabinet LireReglagesCabinet(const AppState &etat)
{
    ReglagesCabinet r;
    r.debut = LireConfig(ouverture, QStringLiteral("Debut"), r.debut);
    r.fin = LireConfig(ouverture, QStringLiteral("Fin"), r.fin);
    r.pauseDebut = LireConfig(ouverture, QStringLiteral("PauseDebut"), r.pauseDebut);
    r.pauseFin = LireConfig(ouverture, QStringLiteral("PauseFin"), r.pauseFin);
    r.duree = LireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QString());
    r.feriesAlsaceMoselle = LireConfig(QStringLiteral("JoursFeries"), QStringLiteral("AlsaceMoselle"), QStringLiteral("0")) == u'1';
    for (int p = 0; p < 2; ++p) {
        r.noms[p] = LireConfig(sectionPraticien(p), QStringLiteral("Nom"), QString());
        r.initiales[p] = LireConfig(sectionPraticien(p), QStringLiteral("Initiales"), QString());
    }
    for (int t = 0; t < 7; ++t) {
        TypeRdvReglage &type = r.types[t];
        type.nom = LireConfig(sectionType(t), QStringLiteral("Type"), etat.TypesRDV.at(t));
        type.couleur1 = LireCouleur(LireConfig(sectionType(t), QStringLiteral("Couleur1"), QStringLiteral("&HFFFFFF")));
        type.couleur2 = LireCouleur(LireConfig(sectionType(t), QStringLiteral("Couleur2"), QStringLiteral("&HFFFFFF")));
    }
    return r;
}

bool EcrireReglagesCabinet(ReglagesCabinet &r, QString *erreur)
{
    for (int p = 0; p < 2; ++p) {
        if (r.initiales[p].trimmed().isEmpty())
            r.initiales[p] = QStringLiteral("P%1").arg(p + 1);
    }
    for (int t = 0; t < 7; ++t) {
        if (r.types[t].nom.trimmed().isEmpty())
            r.types[t].nom = QStringLiteral("RDV Type %1").arg(t + 1);
    }
    QList<std::array<QString, 3>> lignes{
        {ouverture, QStringLiteral("Debut"), r.debut},
        {ouverture, QStringLiteral("Fin"), r.fin},
        {ouverture, QStringLiteral("PauseDebut"), r.pauseDebut},
        {ouverture, QStringLiteral("PauseFin"), r.pauseFin},
        {QStringLiteral("RDV"), QStringLiteral("Duree"), r.duree},
        {QStringLiteral("JoursFeries"), QStringLiteral("AlsaceMoselle"), r.feriesAlsaceMoselle ? QStringLiteral("1") : QStringLiteral("0")},
    };
    for (int p = 0; p < 2; ++p) {
        lignes.append({sectionPraticien(p), QStringLiteral("Nom"), r.noms[p]});
        lignes.append({sectionPraticien(p), QStringLiteral("Initiales"), r.initiales[p]});
    }
    for (int t = 0; t < 7; ++t) {
        lignes.append({sectionType(t), QStringLiteral("Type"), r.types[t].nom});
        lignes.append({sectionType(t), QStringLiteral("Couleur1"), QString::number(r.types[t].couleur1)});
        lignes.append({sectionType(t), QStringLiteral("Couleur2"), QString::number(r.types[t].couleur2)});
    }
    // All the settings or none: another station reads a consistent set.
    return EcrireConfigEnBloc(lignes, erreur);
}

CalendarLabelList LibellesDesReglages(const ReglagesCabinet &r)
{
    CalendarLabelList libelles;
    for (int t = 0; t < 7; ++t)
        libelles.append({t, QStringLiteral("Praticien 1 : ") + r.types[t].nom, r.types[t].couleur1});
    libelles.append({7, QStringLiteral("Praticien 1 : Absent"), 0xFFFFFF});
    for (int t = 0; t < 7; ++t)
        libelles.append({8 + t, QStringLiteral("Praticien 2 : ") + r.types[t].nom, r.types[t].couleur2});
    libelles.append({15, QStringLiteral("Praticien 2 : Absent"), 0xFFFFFF});
    libelles.append({16, QStringLiteral("Praticien 1: VU"), 0xFFFFFF});
    libelles.append({17, QStringLiteral("Praticien 2: VU"), 0xFFFFFF});
    return libelles;
}

QStringList ListeDemiHeures(const QTime &premiere, int nombre)
{
    QStringList heures;
    for (int i = 0; i < nombre; ++i)
        heures << premiere.addSecs(i * 1800).toString(QStringLiteral("HH:mm:ss"));
    return heures;
}

const QStringList &FamillesCouleurs()
{
    static const QStringList familles{QStringLiteral("Turquoise"), QStringLiteral("Bleu"), QStringLiteral("Mauve"),
                                      QStringLiteral("Vert"), QStringLiteral("Rouge")};
    return familles;
}

quint32 CouleurFamille(const AppState &etat, int type, int famille)
{
    if (type < 0 || type > 6 || famille < 1 || famille > 6)
        return 0xFFFFFF;
    return etat.Nuancier.at(static_cast<std::size_t>(type * 6 + famille - 1));
}

RegleEdition RegleEnEdition;

RegleEdition TamponDeRegle(const Regle &r)
{
    RegleEdition t;
    t.Jour = r.Jour;
    t.JourNumero = QString::number(r.JourNumero);
    t.Semaine = r.Semaine;
    t.DateDebut = r.DateDebut;
    t.DateFin = r.DateFin;
    t.HeureDebut = r.HeureDebut;
    t.HeureFin = r.HeureFin;
    t.Praticien = r.Praticien;
    t.PraticienNumero = QString::number(r.PraticienNumero);
    t.TypeRV = r.TypeRV;
    t.TypeText = r.TypeText;
    t.TypeColor = r.TypeColor;
    return t;
}

Regle RegleDuTampon(const RegleEdition &t)
{
    Regle r;
    r.JourNumero = static_cast<qint16>(LireEntier(t.JourNumero));
    r.Jour = NomJourRegle(r.JourNumero);
    r.Semaine = t.Semaine;
    r.DateDebut = t.DateDebut;
    r.DateFin = t.DateFin;
    r.HeureDebut = t.HeureDebut;
    r.HeureFin = t.HeureFin;
    r.Praticien = t.Praticien;
    r.PraticienNumero = static_cast<qint16>(LireEntier(t.PraticienNumero));
    r.TypeRV = t.TypeRV;
    r.TypeText = t.TypeText;
    r.TypeColor = t.TypeColor;
    return r;
}
