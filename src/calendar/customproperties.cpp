#include "calendar/customproperties.h"

#include <QDateTime>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

const QString racine = QStringLiteral("CustomProperties");
const QString element = QStringLiteral("Property");
const QString attrNom = QStringLiteral("Name");
const QString attrType = QStringLiteral("Type");
const QString attrCodage = QStringLiteral("Encoding");
const QString base64 = QStringLiteral("base64");

bool estTransfert(const QString &nom)
{
    return nom == CustomProperties::RecurrenceStateEntry || nom == CustomProperties::RecurrencePatternIDEntry;
}

// XML 1.0 cannot hold every UTF-16 string: control characters, lone
// surrogates and U+FFFE/U+FFFF have no form at all, and a carriage return in
// character data is folded into a line feed by any reader. Such texts are
// written as base64 of their UTF-16 code units, which always comes back intact.
bool passeEnXml(const QString &texte)
{
    for (qsizetype i = 0; i < texte.size(); ++i) {
        const char16_t c = texte.at(i).unicode();
        if (c == u'\r')
            return false;
        if (c < 0x20 && c != u'\t' && c != u'\n')
            return false;
        if (c == 0xFFFE || c == 0xFFFF)
            return false;
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 >= texte.size() || !QChar::isLowSurrogate(texte.at(i + 1).unicode()))
                return false;
            ++i;
        } else if (QChar::isLowSurrogate(c)) {
            return false;
        }
    }
    return true;
}

QString versBase64(const QString &texte)
{
    QByteArray octets;
    octets.reserve(texte.size() * 2);
    for (const QChar c : texte) {
        octets.append(char(c.unicode() & 0xFF));
        octets.append(char(c.unicode() >> 8));
    }
    return QString::fromLatin1(octets.toBase64());
}

QString depuisBase64(const QString &texte)
{
    const QByteArray octets = QByteArray::fromBase64(texte.toLatin1());
    QString resultat;
    resultat.reserve(octets.size() / 2);
    for (qsizetype i = 0; i + 1 < octets.size(); i += 2)
        resultat.append(QChar(char16_t(quint8(octets[i]) | (quint8(octets[i + 1]) << 8))));
    return resultat;
}

// Typed values keep their type through the text form; anything else goes as text.
QString nomDeType(const QVariant &valeur)
{
    switch (valeur.typeId()) {
    case QMetaType::Int: return QStringLiteral("int");
    case QMetaType::LongLong: return QStringLiteral("long");
    case QMetaType::Double: return QStringLiteral("double");
    case QMetaType::Bool: return QStringLiteral("bool");
    case QMetaType::QDateTime: return QStringLiteral("datetime");
    case QMetaType::QDate: return QStringLiteral("date");
    case QMetaType::QTime: return QStringLiteral("time");
    default: return {};
    }
}

QString texteDeValeur(const QVariant &valeur)
{
    switch (valeur.typeId()) {
    case QMetaType::Double: return QString::number(valeur.toDouble(), 'g', 17);
    case QMetaType::Bool: return valeur.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::QDateTime: return valeur.toDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    case QMetaType::QDate: return valeur.toDate().toString(Qt::ISODate);
    case QMetaType::QTime: return valeur.toTime().toString(QStringLiteral("HH:mm:ss.zzz"));
    default: return valeur.toString();
    }
}

QVariant valeurDeTexte(const QString &type, const QString &texte)
{
    if (type == QLatin1String("int"))
        return texte.toInt();
    if (type == QLatin1String("long"))
        return texte.toLongLong();
    if (type == QLatin1String("double"))
        return texte.toDouble();
    if (type == QLatin1String("bool"))
        return texte == QLatin1String("1");
    if (type == QLatin1String("datetime"))
        return QDateTime::fromString(texte, QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    if (type == QLatin1String("date"))
        return QDate::fromString(texte, Qt::ISODate);
    if (type == QLatin1String("time"))
        return QTime::fromString(texte, QStringLiteral("HH:mm:ss.zzz"));
    return texte;
}

} // namespace

qsizetype CustomProperties::indexOf(const QString &name) const
{
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries.at(i).first == name)
            return i;
    }
    return -1;
}

QVariant CustomProperties::GetProperty(const QString &name) const
{
    const qsizetype i = indexOf(name);
    return i < 0 ? QVariant() : m_entries.at(i).second;
}

bool CustomProperties::HasProperty(const QString &name) const
{
    return indexOf(name) >= 0;
}

void CustomProperties::SetProperty(const QString &name, const QVariant &value)
{
    const qsizetype i = indexOf(name);
    if (i < 0)
        m_entries.append({name, value});
    else
        m_entries[i].second = value;
}

bool CustomProperties::RemoveProperty(const QString &name)
{
    const qsizetype i = indexOf(name);
    if (i < 0)
        return false;
    m_entries.removeAt(i);
    return true;
}

void CustomProperties::RemoveAll()
{
    m_entries.clear();
}

QStringList CustomProperties::Names() const
{
    QStringList noms;
    noms.reserve(m_entries.size());
    for (const Entry &e : m_entries)
        noms.append(e.first);
    return noms;
}

QString CustomProperties::SaveToString() const
{
    bool rien = true;
    for (const Entry &e : m_entries)
        rien = rien && estTransfert(e.first);
    if (rien)
        return {};

    QString texte;
    QXmlStreamWriter xml(&texte);
    xml.writeStartElement(racine);
    for (const Entry &e : m_entries) {
        if (estTransfert(e.first))
            continue;
        xml.writeStartElement(element);
        const QString valeur = texteDeValeur(e.second);
        // Name and value are coded together, so one attribute says it for both.
        const bool brut = passeEnXml(e.first) && passeEnXml(valeur);
        xml.writeAttribute(attrNom, brut ? e.first : versBase64(e.first));
        const QString type = nomDeType(e.second);
        if (!type.isEmpty())
            xml.writeAttribute(attrType, type);
        if (!brut)
            xml.writeAttribute(attrCodage, base64);
        xml.writeCharacters(brut ? valeur : versBase64(valeur));
        xml.writeEndElement();
    }
    xml.writeEndElement();
    return texte;
}

bool CustomProperties::LoadFromString(const QString &text)
{
    m_entries.clear();
    if (text.trimmed().isEmpty())
        return true;

    QList<Entry> lues;
    QXmlStreamReader xml(text);
    if (!xml.readNextStartElement() || xml.name() != racine)
        return false;
    while (xml.readNextStartElement()) {
        if (xml.name() != element) {
            xml.skipCurrentElement();
            continue;
        }
        const QXmlStreamAttributes attributs = xml.attributes();
        const bool code = attributs.value(attrCodage) == base64;
        QString nom = attributs.value(attrNom).toString();
        const QString type = attributs.value(attrType).toString();
        QString valeur = xml.readElementText();
        if (code) {
            nom = depuisBase64(nom);
            valeur = depuisBase64(valeur);
        }
        lues.append({nom, valeurDeTexte(type, valeur)});
    }
    if (xml.hasError())
        return false;
    m_entries = lues;
    return true;
}

std::optional<int> CustomProperties::TakeTransferEntry(const QString &name)
{
    const qsizetype i = indexOf(name);
    if (i < 0)
        return std::nullopt;
    const QVariant valeur = m_entries.at(i).second;
    m_entries.removeAt(i);
    bool ok = false;
    const int n = valeur.toInt(&ok);
    if (!ok)
        return std::nullopt;
    return n;
}

void CustomIcons::Add(int id)
{
    m_ids.append(id);
}

bool CustomIcons::Remove(int id)
{
    return m_ids.removeOne(id);
}

QString CustomIcons::SaveToString() const
{
    QStringList parts;
    parts.reserve(m_ids.size());
    for (int id : m_ids)
        parts.append(QString::number(id));
    return parts.join(u',');
}

void CustomIcons::LoadFromString(const QString &text)
{
    m_ids.clear();
    const QStringList parts = text.split(u',', Qt::SkipEmptyParts);
    for (const QString &p : parts) {
        bool ok = false;
        const int id = p.trimmed().toInt(&ok);
        if (ok)
            m_ids.append(id);
    }
}
