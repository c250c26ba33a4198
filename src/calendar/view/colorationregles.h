#pragma once

#include "calendar/view/viewtypes.h"

#include <QColor>

// Colours as the settings and the rules keep them: 0xBBGGRR, red in the low byte.
[[nodiscard]] QColor CouleurDepuisBGR(quint32 bgr);
[[nodiscard]] quint32 BGRDepuisCouleur(const QColor &couleur);

// The day-view cell painter of the main window: the pause greys a cell (not
// on Sundays) and the rule holding at the cell's begin gives it its colour,
// the rule winning over the pause. A selected cell is left as it is, without
// a lookup. Runs one rule lookup on the open Config.mdb for every cell; while
// another station holds that file the colours last read are kept.
void ColorerCelluleSelonRegles(DayViewCell &cell);
