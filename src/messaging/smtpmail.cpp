#include "messaging/smtpmail.h"

#include "shell/base/horloge.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QUuid>

#include <curl/curl.h>

#include <cstring>
#include <mutex>

namespace {

bool estAsciiImprimable(const QString &texte)
{
    for (const QChar c : texte)
        if (c.unicode() < 0x20 || c.unicode() > 0x7e)
            return false;
    return true;
}

// An address as it goes into the envelope and the headers: no line breaks
// (they would let a typed address add headers) and no angle brackets.
QString nettoyerAdresse(const QString &adresse)
{
    QString a = adresse;
    a.remove(u'\r');
    a.remove(u'\n');
    a.remove(u'<');
    a.remove(u'>');
    return a.trimmed();
}

QString sansSautDeLigne(const QString &texte)
{
    QString t = texte;
    t.replace(QLatin1String("\r\n"), QLatin1String(" "));
    t.replace(u'\r', u' ');
    t.replace(u'\n', u' ');
    return t;
}

// The display name and the address, the name quoted when it is plain ASCII.
QByteArray adresseAvecNom(const QString &nom, const QString &adresse)
{
    const QByteArray a = '<' + nettoyerAdresse(adresse).toUtf8() + '>';
    const QString n = sansSautDeLigne(nom).trimmed();
    if (n.isEmpty())
        return a;
    if (estAsciiImprimable(n)) {
        QString q = n;
        q.replace(u'\\', QLatin1String("\\\\"));
        q.replace(u'"', QLatin1String("\\\""));
        return '"' + q.toLatin1() + "\" " + a;
    }
    return EncoderEnTete(n) + ' ' + a;
}

struct Envoi
{
    QByteArray url;
    QByteArray expediteur;
    QByteArray destinataire;
    QByteArray contenu;
    qsizetype lu = 0;
    ServeurSmtp serveur;
    OptionsSmtp options;
};

size_t lireContenu(char *tampon, size_t taille, size_t nombre, void *donnees)
{
    auto *envoi = static_cast<Envoi *>(donnees);
    const qsizetype reste = envoi->contenu.size() - envoi->lu;
    const qsizetype n = std::min<qsizetype>(reste, static_cast<qsizetype>(taille * nombre));
    if (n <= 0)
        return 0;
    std::memcpy(tampon, envoi->contenu.constData() + envoi->lu, static_cast<size_t>(n));
    envoi->lu += n;
    return static_cast<size_t>(n);
}

QString nomServeur(const ServeurSmtp &serveur)
{
    return serveur.hote + u':' + QString::number(serveur.port);
}

QString texteErreur(CURLcode code, long reponse, const ServeurSmtp &serveur, const char *detail)
{
    QString phrase;
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        phrase = QStringLiteral("Serveur SMTP introuvable : %1.").arg(serveur.hote);
        break;
    case CURLE_COULDNT_CONNECT:
        phrase = QStringLiteral("Connexion impossible au serveur SMTP %1.").arg(nomServeur(serveur));
        break;
    case CURLE_OPERATION_TIMEDOUT:
        phrase = QStringLiteral("Le serveur SMTP %1 ne répond pas dans le délai.").arg(nomServeur(serveur));
        break;
    case CURLE_LOGIN_DENIED:
        phrase = QStringLiteral("Le serveur SMTP %1 demande une authentification.").arg(nomServeur(serveur));
        break;
    default:
        // A refusal by the server is a failure of the sending, with its
        // code, by our choice: a mail the server did not take is never
        // counted as sent.
        if (reponse >= 400)
            phrase = QStringLiteral("Le serveur SMTP %1 a refusé le message (code %2).")
                         .arg(nomServeur(serveur))
                         .arg(reponse);
        else
            phrase = QStringLiteral("L'envoi au serveur SMTP %1 a échoué.").arg(nomServeur(serveur));
        break;
    }
    const QString precision = QString::fromUtf8(detail && *detail ? detail : curl_easy_strerror(code)).trimmed();
    if (!precision.isEmpty())
        phrase += QLatin1String(" (") + precision + u')';
    return phrase;
}

// The libcurl transfer itself; blocks until the server has answered the end
// of the message or a limit has passed. Safe on any thread.
QString envoyerBloquant(Envoi &envoi)
{
    static std::once_flag initialisation;
    std::call_once(initialisation, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });

    CURL *curl = curl_easy_init();
    if (!curl)
        return QStringLiteral("L'envoi du mail n'a pas pu être préparé.");
    char detail[CURL_ERROR_SIZE] = {};
    curl_slist *destinataires = curl_slist_append(nullptr, envoi.destinataire.constData());

    curl_easy_setopt(curl, CURLOPT_URL, envoi.url.constData());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "smtp");
    curl_easy_setopt(curl, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_NONE));
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, envoi.expediteur.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, destinataires);
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, &lireContenu);
    curl_easy_setopt(curl, CURLOPT_READDATA, &envoi);
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(envoi.options.delaiConnexionMs));
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(envoi.options.delaiTotalMs));
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, detail);

    const CURLcode resultat = curl_easy_perform(curl);
    long reponse = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &reponse);
    curl_slist_free_all(destinataires);
    curl_easy_cleanup(curl);

    if (resultat == CURLE_OK)
        return {};
    return texteErreur(resultat, reponse, envoi.serveur, detail);
}

} // namespace

ServeurSmtp LireServeurSmtp(const QString &texte)
{
    ServeurSmtp serveur;
    QString t = texte.trimmed();
    if (t.startsWith(QLatin1String("smtp://"), Qt::CaseInsensitive))
        t = t.mid(7);
    while (t.endsWith(u'/'))
        t.chop(1);
    QString port;
    if (t.startsWith(u'[')) {
        const qsizetype fin = t.indexOf(u']');
        if (fin > 0) {
            serveur.hote = t.mid(1, fin - 1);
            if (t.mid(fin + 1).startsWith(u':'))
                port = t.mid(fin + 2);
        } else {
            serveur.hote = t;
        }
    } else if (t.count(u':') == 1) {
        serveur.hote = t.section(u':', 0, 0);
        port = t.section(u':', 1);
    } else {
        serveur.hote = t;
    }
    if (!port.isEmpty()) {
        bool ok = false;
        const int n = port.toInt(&ok);
        if (ok && n > 0 && n < 65536)
            serveur.port = n;
    }
    return serveur;
}

QByteArray EncoderEnTete(const QString &valeur)
{
    const QString v = sansSautDeLigne(valeur);
    if (estAsciiImprimable(v))
        return v.toLatin1();
    // Encoded words of at most 75 characters: 45 bytes of UTF-8 each, never
    // cutting a character in two.
    QByteArray resultat;
    QByteArray morceau;
    const auto vider = [&] {
        if (morceau.isEmpty())
            return;
        if (!resultat.isEmpty())
            resultat += "\r\n ";
        resultat += "=?UTF-8?B?" + morceau.toBase64() + "?=";
        morceau.clear();
    };
    for (qsizetype i = 0; i < v.size(); ++i) {
        qsizetype longueur = 1;
        if (v.at(i).isHighSurrogate() && i + 1 < v.size())
            longueur = 2;
        const QByteArray caractere = v.mid(i, longueur).toUtf8();
        i += longueur - 1;
        if (morceau.size() + caractere.size() > 45)
            vider();
        morceau += caractere;
    }
    vider();
    return resultat;
}

QByteArray EncoderQuotedPrintable(const QByteArray &octets)
{
    static const char hex[] = "0123456789ABCDEF";
    QByteArray sortie;
    int colonne = 0;
    const auto ajouter = [&](const QByteArray &morceau) {
        if (colonne + morceau.size() > 75) {
            sortie += "=\r\n";
            colonne = 0;
        }
        sortie += morceau;
        colonne += static_cast<int>(morceau.size());
    };
    for (qsizetype i = 0; i < octets.size(); ++i) {
        const auto c = static_cast<unsigned char>(octets.at(i));
        if (c == '\r' && i + 1 < octets.size() && octets.at(i + 1) == '\n') {
            sortie += "\r\n";
            colonne = 0;
            ++i;
            continue;
        }
        const bool finDeLigne = i + 1 == octets.size()
                                || (octets.at(i + 1) == '\r' && i + 2 < octets.size() && octets.at(i + 2) == '\n');
        const bool litteral = (c >= 33 && c <= 126 && c != '=' && !(c == '.' && colonne == 0))
                              || ((c == ' ' || c == '\t') && !finDeLigne);
        if (litteral) {
            ajouter(QByteArray(1, static_cast<char>(c)));
        } else {
            const char code[] = {'=', hex[c >> 4], hex[c & 0x0f]};
            ajouter(QByteArray(code, 3));
        }
    }
    return sortie;
}

QByteArray ComposerMessageMail(const MessageMail &message, const QDateTime &date, const QString &idMessage)
{
    QByteArray texte;
    texte += "Date: " + date.toString(Qt::RFC2822Date).toLatin1() + "\r\n";
    texte += "From: " + adresseAvecNom(message.nomExpediteur, message.expediteur) + "\r\n";
    texte += "To: <" + nettoyerAdresse(message.destinataire).toUtf8() + ">\r\n";
    texte += "Subject: " + EncoderEnTete(message.sujet) + "\r\n";
    texte += "Message-ID: <" + nettoyerAdresse(idMessage).toUtf8() + ">\r\n";
    texte += "MIME-Version: 1.0\r\n";
    texte += "Content-Type: text/html; charset=UTF-8\r\n";
    texte += "Content-Transfer-Encoding: quoted-printable\r\n";
    texte += "\r\n";
    texte += EncoderQuotedPrintable(message.html.toUtf8());
    texte += "\r\n";
    return texte;
}

QString EnvoyerMailSmtp(const QString &serveur, const MessageMail &message, const OptionsSmtp &options)
{
    const ServeurSmtp s = LireServeurSmtp(serveur);
    if (s.hote.isEmpty())
        return QStringLiteral("Aucun serveur SMTP n'est indiqué.");
    const QString expediteur = nettoyerAdresse(message.expediteur);
    const QString destinataire = nettoyerAdresse(message.destinataire);
    if (expediteur.isEmpty())
        return QStringLiteral("L'adresse de l'expéditeur est vide.");
    if (destinataire.isEmpty())
        return QStringLiteral("L'adresse du destinataire est vide.");

    const QString domaine = expediteur.contains(u'@') ? expediteur.section(u'@', -1) : QStringLiteral("tavonel.invalid");
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces) + u'@' + domaine;

    Envoi envoi;
    const QString hote = s.hote.contains(u':') ? u'[' + s.hote + u']' : s.hote;
    envoi.url = "smtp://" + hote.toUtf8() + ':' + QByteArray::number(s.port);
    envoi.expediteur = '<' + expediteur.toUtf8() + '>';
    envoi.destinataire = '<' + destinataire.toUtf8() + '>';
    envoi.contenu = ComposerMessageMail(message, Horloge::maintenant(), id);
    envoi.serveur = s;
    envoi.options = options;

    QCoreApplication *application = QCoreApplication::instance();
    if (!application || QThread::currentThread() != application->thread())
        return envoyerBloquant(envoi);

    // On the interface thread: the transfer runs on a worker while a local
    // loop keeps timers and painting alive. User input waits, so no second
    // send can start meanwhile.
    QString erreur;
    QThread *travail = QThread::create([&envoi, &erreur] { erreur = envoyerBloquant(envoi); });
    QEventLoop boucle;
    QObject::connect(travail, &QThread::finished, &boucle, &QEventLoop::quit);
    travail->start();
    boucle.exec(QEventLoop::ExcludeUserInputEvents);
    travail->wait();
    delete travail;
    return erreur;
}
