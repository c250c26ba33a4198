#include "appointments/paquetrdv.h"

#include "patients/patientcourant.h"
#include "shell/base/nombres.h"
#include "shell/base/support.h"

#include <QStringList>

namespace {

constexpr int LargeurBloc = 50;
constexpr int LargeurNom = 26;
constexpr int LargeurPrenom = 14;

// The part at index of the text split on "§", when the text has one.
std::optional<QString> partie(const QString &body, int index)
{
    const QStringList parties = body.split(SeparateurRdv);
    if (parties.size() <= index)
        return std::nullopt;
    return parties.at(index);
}

} // namespace

QString PackerBody(const ChampsRdv &champs)
{
    QString body;
    for (const QString &champ : champs) {
        body += champ;
        body += SeparateurRdv;
    }
    return body;
}

QString ConstruireSubject(const ChampsRdv &champs)
{
    QString bloc = champs[ChampRdv::Nom].left(LargeurNom) + QLatin1Char(' ')
                   + champs[ChampRdv::Prenom].left(LargeurPrenom);
    QString naissance = champs[ChampRdv::DateNaissance];
    if (LireDateTexte(naissance).isValid())
        bloc += QStringLiteral(" (") + TexteAge(naissance) + QLatin1Char(')');
    bloc = bloc.leftJustified(LargeurBloc, QLatin1Char(' '), true);

    QString sujet = bloc + champs[ChampRdv::Telephone];
    if (!champs[ChampRdv::Telephone].isEmpty())
        sujet += QLatin1Char(' ');
    sujet += champs[ChampRdv::Portable];
    sujet += QStringLiteral(" (Pris le ") + champs[ChampRdv::DatePrise].left(5) + QStringLiteral(") ");
    return sujet;
}

QString PackerLocation(const QString &motif, const QString &adressePar)
{
    if (adressePar.isEmpty())
        return motif;
    return motif + SeparateurLocation + adressePar;
}

QString HorodatageRdv(const QDateTime &moment)
{
    return moment.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

void ChampsDuPatient(const PatientCourantRecord &patient, ChampsRdv &champs)
{
    champs[ChampRdv::Nom] = patient.Nom;
    champs[ChampRdv::Prenom] = patient.Prenom;
    champs[ChampRdv::DateNaissance] = patient.DateNaissance;
    champs[ChampRdv::Telephone] = patient.Telephone1;
    champs[ChampRdv::Portable] = patient.Telephone2;
    champs[ChampRdv::Adresse1] = patient.Adresse1;
    champs[ChampRdv::Adresse2] = patient.Adresse2;
    champs[ChampRdv::CodePostal] = patient.CodePostal;
    champs[ChampRdv::Ville] = patient.Ville;
    champs[ChampRdv::NumeroPatient] = QString::number(patient.Numero);
    champs[ChampRdv::Base] = patient.Base;
    champs[ChampRdv::Mel] = patient.Mel;
}

LectureBody LireBody(const QString &body, ChampsRdv &champs)
{
    LectureBody lecture;
    QString texte = body;
    if (texte.startsWith(SeparateurRdv))
        texte.remove(0, 1);

    if (!texte.contains(SeparateurRdv)) {
        // A record of the old form: one free text, kept as the comment.
        lecture.ancienneForme = true;
        champs[ChampRdv::Commentaire] = texte;
    } else {
        const QStringList parties = texte.split(SeparateurRdv);
        // The last part is what follows the final separator; a field that
        // came from the patient base with a "§" of its own shifts the rest,
        // and what would fall beyond the last field is not kept.
        const qsizetype champsLus = std::min<qsizetype>(parties.size() - 1, ChampRdv::Nombre);
        for (qsizetype i = 0; i < champsLus; ++i)
            champs[static_cast<size_t>(i)] = parties.at(i);
    }
    lecture.sansPatient = champs[ChampRdv::DateNaissance].contains(MarqueSansPatient);
    return lecture;
}

ChampsRdv DepaquerBody(const QString &body, LectureBody *lecture)
{
    ChampsRdv champs;
    const LectureBody lu = LireBody(body, champs);
    if (lecture)
        *lecture = lu;
    return champs;
}

LocationLue LireLocation(const QString &location)
{
    if (!location.contains(SeparateurLocation))
        return {location, {}};
    // Only the first two pieces count, as when the text is split on every
    // " => " and the first two parts are taken.
    const QStringList parties = location.split(QString(SeparateurLocation));
    return {parties.at(0), parties.at(1)};
}

std::optional<qint64> NumeroPatientBody(const QString &body)
{
    const std::optional<QString> champ = partie(body, ChampRdv::NumeroPatient);
    if (!champ)
        return std::nullopt;
    return LireEntier(*champ);
}

std::optional<QString> PortableBody(const QString &body)
{
    if (!body.contains(SeparateurRdv))
        return std::nullopt;
    return partie(body, ChampRdv::Portable);
}

std::optional<QString> MelBody(const QString &body)
{
    if (!body.contains(SeparateurRdv))
        return std::nullopt;
    return partie(body, ChampRdv::Mel);
}

bool TelephoneValide(const QString &telephone)
{
    if (telephone.isEmpty())
        return true;
    QString chiffres = telephone;
    chiffres.remove(QLatin1Char('.')).remove(QLatin1Char(' ')).remove(QLatin1Char('+'));
    return chiffres.size() >= 10;
}

bool MelValide(const QString &mel)
{
    return mel.isEmpty() || (mel.contains(QLatin1Char('@')) && mel.contains(QLatin1Char('.')));
}
