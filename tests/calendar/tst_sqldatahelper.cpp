#include "calendar/calendardataprovider.h"
#include "calendar/sqldatahelper.h"

#include <QtTest>

// The statements are compared with texts written out by hand, line by line:
// "\r\n" marks every line end the servers are sent.
class tst_sqldatahelper : public QObject
{
    Q_OBJECT

private:
    static CalendarEventPtr rendezVous()
    {
        CalendarEventPtr e = CalendarEvent::create(42);
        e->setSubject(QStringLiteral("A\\B\"C"));
        e->setLocation(QStringLiteral("Cabinet l'Orée"));
        e->setBody(QString::fromUtf8("x§y§"));
        e->setIsMeeting(true);
        e->setIsPrivate(false);
        e->setLabelID(3);
        e->setBusyStatus(1);
        e->setImportanceLevel(1);
        e->setStartDateTime(QDateTime(QDate(2014, 2, 3), QTime(9, 5)));
        e->setEndDateTime(QDateTime(QDate(2014, 2, 3), QTime(9, 35)));
        e->setIsAllDayEvent(false);
        e->setIsReminder(true);
        e->setReminderMinutesBeforeStart(1440);
        e->setReminderSoundFile(QStringLiteral("C:\\son.wav"));
        e->setScheduleID(2);
        return e;
    }

    static CalendarRecurrencePatternPtr serie()
    {
        CalendarRecurrencePatternPtr p = CalendarRecurrencePattern::create(7);
        p->setMasterEventID(42);
        p->setStartTime(QTime(9, 5));
        p->setDurationMinutes(30);
        p->setStartDate(QDate(2014, 2, 3));
        p->setEndMethod(1);
        p->setEndAfterOccurrences(10);
        return p;
    }

    static QStringList colonnesEvenement()
    {
        return {QStringLiteral("EventID"), QStringLiteral("Subject"), QStringLiteral("Location"), QStringLiteral("Body"),
                QStringLiteral("IsMeeting"), QStringLiteral("IsPrivate"), QStringLiteral("LabelID"), QStringLiteral("BusyStatus"),
                QStringLiteral("ImportanceLevel"), QStringLiteral("StartDateTime"), QStringLiteral("EndDateTime"),
                QStringLiteral("IsAllDayEvent"), QStringLiteral("IsReminder"), QStringLiteral("ReminderMinutesBeforeStart"),
                QStringLiteral("RemainderSoundFile"), QStringLiteral("RecurrenceState"), QStringLiteral("RecurrencePatternID"),
                QStringLiteral("RExceptionStartTimeOrig"), QStringLiteral("RExceptionEndTimeOrig"),
                QStringLiteral("ISRecurrenceExceptionDeleted"), QStringLiteral("CustomPropertiesXMLData"),
                QStringLiteral("CustomIconsIDs"), QStringLiteral("ScheduleID")};
    }

    // A server row as the recordset gives it.
    static MemoryRecord ligne(const QStringList &colonnes = colonnesEvenement())
    {
        MemoryRecord r(colonnes);
        const QList<QPair<QString, QVariant>> valeurs = {
            {QStringLiteral("EventID"), 17},
            {QStringLiteral("Subject"), QStringLiteral("DUPONT Jean")},
            {QStringLiteral("Location"), QStringLiteral("Contrôle")},
            {QStringLiteral("Body"), QString::fromUtf8("a§b§")},
            {QStringLiteral("IsMeeting"), 2},
            {QStringLiteral("IsPrivate"), 0},
            {QStringLiteral("LabelID"), 9},
            {QStringLiteral("BusyStatus"), 1},
            {QStringLiteral("ImportanceLevel"), 2},
            {QStringLiteral("StartDateTime"), QDateTime(QDate(2015, 1, 2), QTime(10, 0))},
            {QStringLiteral("EndDateTime"), QStringLiteral("2015-01-02 10:20:00")},
            {QStringLiteral("IsAllDayEvent"), 0},
            {QStringLiteral("IsReminder"), -1},
            {QStringLiteral("ReminderMinutesBeforeStart"), 30},
            {QStringLiteral("RemainderSoundFile"), QStringLiteral("bip.wav")},
            {QStringLiteral("RecurrenceState"), 1},
            {QStringLiteral("RecurrencePatternID"), 5},
            {QStringLiteral("RExceptionStartTimeOrig"), QStringLiteral("2015-01-02 10:00:00")},
            {QStringLiteral("RExceptionEndTimeOrig"), QStringLiteral("2015-01-02 10:20:00")},
            {QStringLiteral("ISRecurrenceExceptionDeleted"), 1},
            {QStringLiteral("CustomPropertiesXMLData"), QString()},
            {QStringLiteral("CustomIconsIDs"), QStringLiteral("3,5")},
            {QStringLiteral("ScheduleID"), 4},
        };
        for (const auto &[nom, valeur] : valeurs) {
            if (colonnes.contains(nom))
                r.setField(nom, valeur);
        }
        return r;
    }

private Q_SLOTS:
    // The year is written as it is, without zeros in front.
    void literaux()
    {
        QCOMPARE(SQLDataHelper::MakeSQLDateTime(QDateTime(QDate(950, 7, 14), QTime(10, 11, 12))),
                 QStringLiteral("{ts'950-07-14 10:11:12'}"));
    }

    void getDsn_data()
    {
        QTest::addColumn<QString>("connexion");
        QTest::addColumn<bool>("valide");
        QTest::addColumn<QString>("dsn");
        QTest::newRow("marque") << "Provider=Custom;DSN=Calendar_SQLServer" << true << "DSN=Calendar_SQLServer";
        QTest::newRow("marque non comparée") << "XXXXXXXXXXXXXXXXDSN=Calendar_MySQL" << true << "DSN=Calendar_MySQL";
        QTest::newRow("marque seule") << "Provider=Custom;" << true << "";
        QTest::newRow("trop court") << "DSN=court" << false << "";
    }
    void getDsn()
    {
        QFETCH(QString, connexion);
        QFETCH(bool, valide);
        QFETCH(QString, dsn);
        const std::optional<QString> r = SQLDataHelper::GetDSN(connexion);
        QCOMPARE(r.has_value(), valide);
        if (valide)
            QCOMPARE(*r, dsn);
    }

    void miseAJourEvenement_data()
    {
        QTest::addColumn<int>("etat");
        QTest::addColumn<QString>("ligneSerie");
        QTest::newRow("simple") << 0 << "RecurrencePatternID = 0, \r\n";
        QTest::newRow("maître") << 1 << "RecurrencePatternID = 7, \r\n";
        QTest::newRow("occurrence") << 2 << "RecurrencePatternID = 0, \r\n";
        QTest::newRow("exception") << 3 << "RecurrencePatternID = 7, \r\n";
    }
    void miseAJourEvenement()
    {
        QFETCH(int, etat);
        QFETCH(QString, ligneSerie);
        CalendarEventPtr e = rendezVous();
        const CalendarRecurrencePatternPtr p = serie();
        e->setRecurrencePattern(p);
        e->setRecurrenceState(etat);
        const QString attendu = QStringLiteral("UPDATE CalendarEvents SET \r\n"
                                               "Subject = \"A\\\\B\\\"C\", \r\n"
                                               "Location = \"Cabinet l'Orée\", \r\n")
                                + QString::fromUtf8("Body = \"x§y§\", \r\n")
                                + QStringLiteral("IsMeeting = 1, \r\n"
                                                 "IsPrivate = 0, \r\n"
                                                 "LabelID = 3, \r\n"
                                                 "BusyStatus = 1, \r\n"
                                                 "ImportanceLevel = 1, \r\n"
                                                 "StartDateTime = {ts'2014-02-03 09:05:00'}, \r\n"
                                                 "EndDateTime = {ts'2014-02-03 09:35:00'}, \r\n"
                                                 "IsAllDayEvent = 0, \r\n"
                                                 "IsReminder = 1, \r\n"
                                                 "ReminderMinutesBeforeStart = 1440, \r\n"
                                                 "RemainderSoundFile = \"C:\\\\son.wav\", \r\n"
                                                 "RecurrenceState = ")
                                + QString::number(etat)
                                + QStringLiteral(", \r\n") + ligneSerie
                                + QStringLiteral("RExceptionStartTimeOrig = {ts'1899-12-30 00:00:00'}, \r\n"
                                                 "RExceptionEndTimeOrig = {ts'1899-12-30 00:00:00'}, \r\n"
                                                 "ISRecurrenceExceptionDeleted = 0, \r\n"
                                                 "CustomPropertiesXMLData = \"\" \r\n"
                                                 "CustomIconsIDs = \"\", \r\n"
                                                 "ScheduleID = 2 \r\n"
                                                 "WHERE EventID = 42;");
        QCOMPARE(SQLDataHelper::MakeUpdateEventSQL(*e), attendu);
    }

    void creationEvenement()
    {
        CalendarEventPtr e = rendezVous();
        e->setLabelID(-5);
        e->setIsMeeting(false);
        e->setIsPrivate(true);
        e->setIsAllDayEvent(true);
        e->setRExceptionStartTimeOrig(QDateTime(QDate(2014, 2, 1), QTime(8, 0)));
        e->setRExceptionDeleted(true);
        e->CustomIcons().Add(3);
        const QString attendu =
            QStringLiteral("INSERT INTO CalendarEvents (Subject, Location, Body, IsMeeting, IsPrivate, LabelID, BusyStatus, "
                           "ImportanceLevel, StartDateTime, EndDateTime, IsAllDayEvent, IsReminder, ReminderMinutesBeforeStart, "
                           "RemainderSoundFile, RecurrenceState, RecurrencePatternID, RExceptionStartTimeOrig, "
                           "RExceptionEndTimeOrig, ISRecurrenceExceptionDeleted, CustomPropertiesXMLData, CustomIconsIDs, "
                           "ScheduleID) \r\n"
                           "VALUES(\"A\\\\B\\\"C\", \r\n"
                           "\"Cabinet l'Orée\", \r\n")
            + QString::fromUtf8("\"x§y§\", \r\n")
            + QStringLiteral("0, \r\n"
                             "1, \r\n"
                             "-5, \r\n"
                             "1, \r\n"
                             "1, \r\n"
                             "{ts'2014-02-03 09:05:00'}, \r\n"
                             "{ts'2014-02-03 09:35:00'}, \r\n"
                             "1, \r\n"
                             "1, \r\n"
                             "1440, \r\n"
                             "\"C:\\\\son.wav\", \r\n"
                             "0, \r\n"
                             "0, \r\n"
                             "{ts'2014-02-01 08:00:00'}, \r\n"
                             "{ts'1899-12-30 00:00:00'}, \r\n"
                             "1, \r\n"
                             "\"\", \r\n"
                             "\"3\", \r\n"
                             "2);\r\n");
        QCOMPARE(SQLDataHelper::MakeCreateEventSQL(*e), attendu);
    }

    void statementsSerie()
    {
        const CalendarRecurrencePatternPtr p = serie();
        const auto &o = p->Options();
        const QString d1 = QString::number(o.Data1()), d2 = QString::number(o.Data2()), d3 = QString::number(o.Data3()),
                      d4 = QString::number(o.Data4());
        const QString maj = QStringLiteral("UPDATE CalendarRecurrencePatterns SET \r\n"
                                           "MasterEventID = 42, \r\n"
                                           "EventStartTime = {ts'1899-12-30 09:05:00'}, \r\n"
                                           "EventDuration = 30, \r\n"
                                           "PatternStartDate = {ts'2014-02-03 00:00:00'}, \r\n"
                                           "PatternEndMethod = 1, \r\n"
                                           "PatternEndDate = {ts'1899-12-30 00:00:00'}, \r\n"
                                           "PatternEndAfterOccurrences = 10, \r\n")
                            + QStringLiteral("OptionsData1 = ") + d1 + QStringLiteral(", \r\n") + QStringLiteral("OptionsData2 = ") + d2
                            + QStringLiteral(", \r\n") + QStringLiteral("OptionsData3 = ") + d3 + QStringLiteral(", \r\n")
                            + QStringLiteral("OptionsData4 = ") + d4 + QStringLiteral(", \r\n")
                            + QStringLiteral("CustomPropertiesXMLData = \"\" \r\n"
                                             " WHERE RecurrencePatternID = 7");
        QCOMPARE(SQLDataHelper::MakeUpdatePatternSQL(*p), maj);

        const QString creation = QStringLiteral("INSERT INTO CalendarRecurrencePatterns (MasterEventID, \r\n"
                                                "EventStartTime, \r\n"
                                                "EventDuration, \r\n"
                                                "PatternStartDate, \r\n"
                                                "PatternEndMethod, \r\n"
                                                "PatternEndDate, \r\n"
                                                "PatternEndAfterOccurrences, \r\n"
                                                "OptionsData1, \r\n"
                                                "OptionsData2, \r\n"
                                                "OptionsData3, \r\n"
                                                "OptionsData4, \r\n"
                                                "CustomPropertiesXMLData) \r\n"
                                                "VALUES(42, \r\n"
                                                "{ts'1899-12-30 09:05:00'}, \r\n"
                                                "30, \r\n"
                                                "{ts'2014-02-03 00:00:00'}, \r\n"
                                                "1, \r\n"
                                                "{ts'1899-12-30 00:00:00'}, \r\n"
                                                "10, \r\n")
                                 + d1 + QStringLiteral(", \r\n") + d2 + QStringLiteral(", \r\n") + d3 + QStringLiteral(", \r\n") + d4
                                 + QStringLiteral(", \r\n") + QStringLiteral("\"\"); ");
        QCOMPARE(SQLDataHelper::MakeCreatePatternSQL(*p), creation);
    }

    void lectureJour()
    {
        const QString attendu = QStringLiteral("SELECT * FROM CalendarEvents WHERE \r\n"
                                               " ( RecurrenceState = 0 OR \r\n"
                                               "   RecurrenceState = 1) AND \r\n"
                                               "( YEAR(StartDateTime) < 2015\r\n"
                                               "  OR ( YEAR(StartDateTime) = 2015 AND \r\n"
                                               "       ( MONTH(StartDateTime) < 1 OR          MONTH(StartDateTime) = 1 AND \r\n"
                                               "         DAY(StartDateTime) <= 2\r\n"
                                               "     ) ) )AND \r\n"
                                               "( YEAR(EndDateTime) > 2015\r\n"
                                               "  OR ( YEAR(EndDateTime) = 2015 AND \r\n"
                                               "       (MONTH(EndDateTime) > 1 OR         MONTH(EndDateTime) = 1 AND \r\n"
                                               "        DAY(EndDateTime) >= 2\r\n"
                                               "     ) ) ) \r\n");
        QCOMPARE(SQLDataHelper::MakeRetrieveDayEventsSQL(QDate(2015, 1, 2)), attendu);
    }

    void rappelsAVenir_data()
    {
        QTest::addColumn<int>("genre");
        QTest::addColumn<bool>("filtre");
        QTest::addColumn<QString>("attendu");
        const QString court = QStringLiteral("SELECT * FROM CalendarEvents WHERE \r\n"
                                             "(RecurrenceState = 0 OR \r\n"
                                             " RecurrenceState = 1) \r\n");
        auto complet = [&](const QString &e) {
            return court
                   + QStringLiteral(" AND \r\n"
                                    " ( IsReminder <> 0 OR \r\n"
                                    "     ( RecurrenceState = 1 AND \r\n"
                                    "       RecurrencePatternID IN \r\n"
                                    "         ( SELECT RecurrencePatternID  FROM CalendarEvents \r\n"
                                    "           WHERE \r\n"
                                    "             RecurrenceState = 3 AND \r\n"
                                    "             IsReminder <> 0 AND \r\n"
                                    "         ")
                   + e + QStringLiteral(" <= {ts'2014-02-03 10:30:00'}\r\n"
                                        "         ) \r\n"
                                        "     ) \r\n"
                                        " ) AND \r\n")
                   + e + QStringLiteral(" <= {ts'2014-02-03 10:30:00'}");
        };
        QTest::newRow("SQL Server") << 4 << true << complet(QStringLiteral(" DATEADD(\"n\", -1 * ReminderMinutesBeforeStart, StartDateTime) "));
        QTest::newRow("MySQL") << 5 << true << complet(QStringLiteral(" ADDDATE(StartDateTime, INTERVAL -1*ReminderMinutesBeforeStart MINUTE) "));
        QTest::newRow("autre genre filtré") << 2 << true << "err";
        QTest::newRow("autre genre sans filtre") << 2 << false << court;
        QTest::newRow("SQL Server sans filtre") << 4 << false << court;
    }
    void rappelsAVenir()
    {
        QFETCH(int, genre);
        QFETCH(bool, filtre);
        QFETCH(QString, attendu);
        QCOMPARE(SQLDataHelper::MakeGetUpcomingEventsSQL(genre, QDateTime(QDate(2014, 2, 3), QTime(9, 0)), 90, filtre), attendu);
    }

    // The end of the window is the clock reading plus the minutes, also
    // across the nights when summer time begins or ends (Paris time here).
    void finDeFenetre_data()
    {
        QTest::addColumn<QDateTime>("debut");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<QString>("fin");
        QTest::newRow("jour ordinaire") << QDateTime(QDate(2026, 3, 28), QTime(1, 30)) << 90 << "{ts'2026-03-28 03:00:00'}";
        QTest::newRow("passage à l'heure d'été") << QDateTime(QDate(2026, 3, 29), QTime(1, 30)) << 90 << "{ts'2026-03-29 03:00:00'}";
        QTest::newRow("retour à l'heure d'hiver") << QDateTime(QDate(2026, 10, 25), QTime(1, 30)) << 90 << "{ts'2026-10-25 03:00:00'}";
        QTest::newRow("deux jours") << QDateTime(QDate(2026, 10, 24), QTime(8, 0)) << 2880 << "{ts'2026-10-26 08:00:00'}";
        QTest::newRow("minutes négatives") << QDateTime(QDate(2026, 3, 29), QTime(4, 0)) << -180 << "{ts'2026-03-29 01:00:00'}";
    }
    void finDeFenetre()
    {
        QFETCH(QDateTime, debut);
        QFETCH(int, minutes);
        QFETCH(QString, fin);
        const QString sql = SQLDataHelper::MakeGetUpcomingEventsSQL(5, debut, minutes, true);
        QVERIFY2(sql.endsWith(QStringLiteral(" <= ") + fin), qPrintable(sql.right(40)));
    }

    void lignesIllisibles_data()
    {
        QTest::addColumn<QString>("colonneManquante");
        QTest::addColumn<QString>("colonneNulle");
        QTest::addColumn<QVariant>("valeur");
        QTest::newRow("ScheduleID absente") << "ScheduleID" << "" << QVariant();
        QTest::newRow("Subject absente") << "Subject" << "" << QVariant();
        QTest::newRow("Subject nul") << "" << "Subject" << QVariant();
        QTest::newRow("date nulle") << "" << "StartDateTime" << QVariant();
        QTest::newRow("date illisible") << "" << "EndDateTime" << QVariant(QStringLiteral("demain"));
        QTest::newRow("nombre illisible") << "" << "LabelID" << QVariant(QStringLiteral("bleu"));
        QTest::newRow("dépassement") << "" << "BusyStatus" << QVariant(qint64(5000000000));
    }
    void lignesIllisibles()
    {
        QFETCH(QString, colonneManquante);
        QFETCH(QString, colonneNulle);
        QFETCH(QVariant, valeur);
        CalendarDataProvider fournisseur;
        SQLDataHelper h;
        h.SetCalendar(&fournisseur);
        QStringList colonnes = colonnesEvenement();
        colonnes.removeAll(colonneManquante);
        MemoryRecord r = ligne(colonnes);
        if (!colonneNulle.isEmpty())
            r.setField(colonneNulle, valeur);
        QVERIFY(!h.CreateEventFromRS(r));
        QVERIFY(!h.CreateEventFromRS(r, true));
    }

    // The stores' own date text is read by hand; anything that is not
    // exactly that text, or not a real date and time, is refused and left to
    // the general parser.
    void texteIso_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QDateTime>("attendu");
        const QDateTime refuse;
        QTest::newRow("ordinaire") << "2026-03-09 10:15:00" << QDateTime(QDate(2026, 3, 9), QTime(10, 15));
        QTest::newRow("secondes") << "2014-12-31 23:59:59" << QDateTime(QDate(2014, 12, 31), QTime(23, 59, 59));
        QTest::newRow("date zéro") << "1899-12-30 00:00:00" << QDateTime(QDate(1899, 12, 30), QTime(0, 0));
        QTest::newRow("29 février bissextile") << "2024-02-29 08:00:00" << QDateTime(QDate(2024, 2, 29), QTime(8, 0));
        QTest::newRow("29 février commun") << "2026-02-29 08:00:00" << refuse;
        QTest::newRow("mois 13") << "2026-13-01 08:00:00" << refuse;
        QTest::newRow("jour 0") << "2026-03-00 08:00:00" << refuse;
        QTest::newRow("24 h") << "2026-03-09 24:00:00" << refuse;
        QTest::newRow("60 min") << "2026-03-09 10:60:00" << refuse;
        QTest::newRow("lettre") << "2026-03-O9 10:15:00" << refuse;
        QTest::newRow("signe") << "2026-03-+9 10:15:00" << refuse;
        QTest::newRow("séparateur T") << "2026-03-09T10:15:00" << refuse;
        QTest::newRow("barres") << "2026/03/09 10:15:00" << refuse;
        QTest::newRow("sans secondes") << "2026-03-09 10:15" << refuse;
        QTest::newRow("millisecondes") << "2026-03-09 10:15:00.000" << refuse;
        QTest::newRow("blanc devant") << " 2026-03-09 10:15:0" << refuse;
        QTest::newRow("vide") << "" << refuse;
    }
    void texteIso()
    {
        QFETCH(QString, texte);
        QFETCH(QDateTime, attendu);
        QDate j;
        QTime h;
        const bool lu = RecordValue::parseIsoText(QStringView(texte), j, h);
        QCOMPARE(lu ? QDateTime(j, h) : QDateTime(), attendu);
        const QByteArray octets = texte.toLatin1();
        QDate j8;
        QTime h8;
        QCOMPARE(RecordValue::parseIsoText(QLatin1StringView(octets), j8, h8), lu);
        QCOMPARE(j8, lu ? j : QDate());
        QCOMPARE(h8, lu ? h : QTime());
        // The general reading agrees wherever the text is the stores' own.
        if (lu) {
            const QDateTime general = RecordValue::dateTime(QVariant(texte));
            QCOMPARE(general, attendu == RecordValue::zeroDate() ? QDateTime() : attendu);
        }
    }

    void sansFournisseurNiLigne()
    {
        SQLDataHelper h;
        QVERIFY(!h.CreateEventFromRS(ligne())); // no provider to make the record
        CalendarDataProvider fournisseur;
        h.SetCalendar(&fournisseur);
        MemoryRecord fin = ligne();
        fin.setAtEnd(true);
        QVERIFY(!h.CreateEventFromRS(fin));
    }

    void ecritureLigne()
    {
        SQLDataHelper h;
        CalendarEventPtr e = rendezVous();
        MemoryRecord r(colonnesEvenement());
        h.PutEventToRS(*e, r);
        // Every column but the key, in the table's order.
        const QStringList ordre = colonnesEvenement().mid(1);
        QCOMPARE(r.writeOrder(), ordre);
        QCOMPARE(r.field(QStringLiteral("RemainderSoundFile")).toString(), QStringLiteral("C:\\son.wav"));
        QCOMPARE(r.field(QStringLiteral("IsMeeting")).toInt() + r.field(QStringLiteral("IsReminder")).toInt(), 2);

        // A row without one of the columns is left half filled.
        QStringList colonnes = colonnesEvenement();
        colonnes.removeAll(QStringLiteral("RExceptionEndTimeOrig"));
        MemoryRecord partielle(colonnes);
        h.PutEventToRS(*e, partielle);
        QCOMPARE(partielle.writeOrder(), ordre.mid(0, ordre.indexOf(QStringLiteral("RExceptionEndTimeOrig"))));
    }

    void lectureSerie_data()
    {
        QTest::addColumn<int>("methode");
        QTest::addColumn<QDate>("finAttendue");
        QTest::addColumn<int>("nombreAttendu");
        const auto neuf = CalendarRecurrencePattern::create();
        QTest::newRow("par date") << 0 << QDate(2015, 6, 30) << neuf->EndAfterOccurrences();
        QTest::newRow("par nombre") << 1 << neuf->EndDate() << 12;
        QTest::newRow("sans fin") << 2 << neuf->EndDate() << neuf->EndAfterOccurrences();
        QTest::newRow("méthode inconnue") << 7 << neuf->EndDate() << neuf->EndAfterOccurrences();
    }
    void lectureSerie()
    {
        QFETCH(int, methode);
        QFETCH(QDate, finAttendue);
        QFETCH(int, nombreAttendu);

        // The exceptions come through the connection, with their statement.
        class Connexion final : public RecordConnection
        {
        public:
            QStringList envoyes;
            QList<MemoryRecord> lignes;
            std::unique_ptr<RecordCursor> execute(const QString &sql) override
            {
                envoyes << sql;
                return std::make_unique<MemoryCursor>(lignes);
            }
        } connexion;
        MemoryRecord exc = ligne();
        exc.setField(QStringLiteral("RecurrenceState"), 3);
        MemoryRecord illisible = ligne();
        illisible.setField(QStringLiteral("Subject"), QVariant());
        connexion.lignes = {exc, illisible};

        const QList<QPair<QString, QVariant>> champs = {
            {"RecurrencePatternID", 5}, {"MasterEventID", 17}, {"EventStartTime", "1899-12-30 10:00:00"},
            {"EventDuration", 20}, {"PatternStartDate", "2015-01-02 00:00:00"}, {"PatternEndMethod", methode},
            {"PatternEndDate", "2015-06-30 00:00:00"}, {"PatternEndAfterOccurrences", 12}, {"OptionsData1", 1},
            {"OptionsData2", 1}, {"OptionsData3", 0}, {"OptionsData4", 0}, {"CustomPropertiesXMLData", QString()}};
        QStringList colonnes;
        for (const auto &c : champs)
            colonnes << c.first;
        MemoryRecord r(colonnes);
        for (const auto &[nom, valeur] : champs)
            r.setField(nom, valeur);

        CalendarDataProvider fournisseur;
        SQLDataHelper h;
        h.SetCalendar(&fournisseur);
        const CalendarRecurrencePatternPtr p = h.CreateRPatternFromRS(r, connexion);
        QVERIFY(p);
        QCOMPARE(p->RecurrencePatternID(), 5);
        QCOMPARE(p->MasterEventID(), 17);
        QCOMPARE(p->StartTime(), QTime(10, 0));
        QCOMPARE(p->StartDate(), QDate(2015, 1, 2));
        QCOMPARE(p->DurationMinutes(), 20);
        QCOMPARE(p->EndMethod(), methode);
        QCOMPARE(p->EndDate(), finAttendue);
        QCOMPARE(p->EndAfterOccurrences(), nombreAttendu);
        QCOMPARE(connexion.envoyes,
                 QStringList{QStringLiteral("SELECT * FROM CalendarEvents WHERE \r\n RecurrenceState = 3 AND \r\n RecurrencePatternID = 5")});
        // The unreadable exception row is skipped, the other one attached.
        QCOMPARE(p->ExceptionsCount(), 1);
        QCOMPARE(p->Exceptions().first()->RecurrenceState(), 3);

        MemoryRecord sortie(r.columns());
        h.PutRPatternToRS(*p, sortie);
        QCOMPARE(sortie.writeOrder(), r.columns().mid(1));

        // A failing exceptions statement is swallowed with the rest of the
        // reader's failures: the pattern is left out, nothing is thrown.
        class ConnexionEnPanne final : public RecordConnection
        {
        public:
            int appels = 0;
            std::unique_ptr<RecordCursor> execute(const QString &) override
            {
                ++appels;
                throw FieldError(QStringLiteral("Table 'CalendarEvents' doesn't exist"));
            }
        } enPanne;
        CalendarRecurrencePatternPtr sansExceptions;
        try {
            sansExceptions = h.CreateRPatternFromRS(r, enPanne);
        } catch (const FieldError &e) {
            QFAIL(e.what());
        }
        QCOMPARE(enPanne.appels, 1);
        QVERIFY(!sansExceptions);
    }
};

QTEST_GUILESS_MAIN(tst_sqldatahelper)
#include "tst_sqldatahelper.moc"
