#!/usr/bin/python3
# Reads an iCalendar file with Debian's icalendar and recurring_ical_events,
# which know nothing of the program, and prints the events between two days
# (the second excluded), one "start|summary" line each, in order.
import datetime
import sys

import icalendar
import recurring_ical_events

with open(sys.argv[1], 'rb') as f:
    calendrier = icalendar.Calendar.from_ical(f.read())
debut = datetime.date.fromisoformat(sys.argv[2])
fin = datetime.date.fromisoformat(sys.argv[3])
lignes = []
for e in recurring_ical_events.of(calendrier).between(debut, fin):
    lignes.append('%s|%s' % (e['DTSTART'].dt.isoformat(), e['SUMMARY']))
print('\n'.join(sorted(lignes)))
