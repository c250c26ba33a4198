-- The two calendar tables of a store on a database server (kinds SQL Server
-- and MySQL of the store chooser), in MariaDB/MySQL syntax. Run once in the
-- practice's database:  mariadb Calendar < calendrier-serveur.sql
CREATE TABLE IF NOT EXISTS CalendarEvents (
  EventID INT NOT NULL AUTO_INCREMENT PRIMARY KEY,
  Subject TEXT NOT NULL DEFAULT '',
  Location TEXT NOT NULL DEFAULT '',
  Body TEXT NOT NULL DEFAULT '',
  IsMeeting INT NOT NULL DEFAULT 0,
  IsPrivate INT NOT NULL DEFAULT 0,
  LabelID INT NOT NULL DEFAULT 0,
  BusyStatus INT NOT NULL DEFAULT 0,
  ImportanceLevel INT NOT NULL DEFAULT 1,
  StartDateTime DATETIME NOT NULL,
  EndDateTime DATETIME NOT NULL,
  IsAllDayEvent INT NOT NULL DEFAULT 0,
  IsReminder INT NOT NULL DEFAULT 0,
  ReminderMinutesBeforeStart INT NOT NULL DEFAULT 0,
  RemainderSoundFile TEXT NOT NULL DEFAULT '',
  RecurrenceState INT NOT NULL DEFAULT 0,
  RecurrencePatternID INT NOT NULL DEFAULT 0,
  RExceptionStartTimeOrig DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',
  RExceptionEndTimeOrig DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',
  ISRecurrenceExceptionDeleted INT NOT NULL DEFAULT 0,
  CustomPropertiesXMLData MEDIUMTEXT NOT NULL DEFAULT '',
  CustomIconsIDs TEXT NOT NULL DEFAULT '',
  ScheduleID INT NOT NULL DEFAULT 0,
  KEY idx_serie (RecurrencePatternID, RecurrenceState)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4;

CREATE TABLE IF NOT EXISTS CalendarRecurrencePatterns (
  RecurrencePatternID INT NOT NULL AUTO_INCREMENT PRIMARY KEY,
  MasterEventID INT NOT NULL DEFAULT 0,
  EventStartTime DATETIME NOT NULL,
  EventDuration INT NOT NULL DEFAULT 0,
  PatternStartDate DATETIME NOT NULL,
  PatternEndMethod INT NOT NULL DEFAULT 2,
  PatternEndDate DATETIME NOT NULL DEFAULT '1899-12-30 00:00:00',
  PatternEndAfterOccurrences INT NOT NULL DEFAULT 0,
  OptionsData1 INT NOT NULL DEFAULT 0,
  OptionsData2 INT NOT NULL DEFAULT 0,
  OptionsData3 INT NOT NULL DEFAULT 0,
  OptionsData4 INT NOT NULL DEFAULT 0,
  CustomPropertiesXMLData MEDIUMTEXT NOT NULL DEFAULT ''
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4;
