#pragma once

#include <QIcon>

// Drawn icons of the toolbar buttons, by button number (1 to 4 the views,
// 6 cut, 7 copy, 8 paste, 12 search or open, 14 page setup, 15 preview,
// 16 print). A number without an icon gives an empty one.
[[nodiscard]] QIcon IconeBarre(int bouton);
