#include "shell/window/iconesbarre.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

constexpr int Taille = 24;

// A page with a blue header band and a grid of the given columns and rows.
void grille(QPainter &p, int colonnes, int lignes)
{
    const QRectF cadre(2.5, 3.5, 19, 17);
    p.setPen(QPen(QColor(60, 60, 60), 1));
    p.setBrush(Qt::white);
    p.drawRect(cadre);
    p.fillRect(QRectF(3, 4, 18, 4), QColor(43, 87, 154));
    p.setPen(QPen(QColor(130, 130, 130), 1));
    const double h = (cadre.bottom() - 8.5) / lignes;
    const double l = cadre.width() / colonnes;
    for (int c = 1; c < colonnes; ++c)
        p.drawLine(QPointF(cadre.left() + c * l, 8.5), QPointF(cadre.left() + c * l, cadre.bottom()));
    for (int r = 1; r < lignes; ++r)
        p.drawLine(QPointF(cadre.left(), 8.5 + r * h), QPointF(cadre.right(), 8.5 + r * h));
}

void page(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(QColor(70, 70, 70), 1));
    p.setBrush(Qt::white);
    p.drawRect(r);
    p.setPen(QPen(QColor(150, 150, 150), 1));
    for (double y = r.top() + 3; y < r.bottom() - 1; y += 3)
        p.drawLine(QPointF(r.left() + 2, y), QPointF(r.right() - 2, y));
}

void loupe(QPainter &p, const QPointF &centre, double rayon)
{
    p.setPen(QPen(QColor(50, 50, 50), 2.2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(centre + QPointF(rayon * 0.7, rayon * 0.7), centre + QPointF(rayon * 1.6, rayon * 1.6));
    p.setPen(QPen(QColor(50, 50, 50), 1.6));
    p.setBrush(QColor(200, 225, 250));
    p.drawEllipse(centre, rayon, rayon);
}

} // namespace

QIcon IconeBarre(int bouton)
{
    QPixmap image(Taille, Taille);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    switch (bouton) {
    case 1:
        grille(p, 1, 4);
        break;
    case 2:
        grille(p, 5, 4);
        break;
    case 3:
        grille(p, 2, 3);
        break;
    case 4:
        grille(p, 7, 5);
        break;
    case 6: { // scissors
        p.setPen(QPen(QColor(60, 60, 60), 1.6));
        p.drawLine(QPointF(8, 3), QPointF(15, 16));
        p.drawLine(QPointF(16, 3), QPointF(9, 16));
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(QColor(180, 30, 30), 2));
        p.drawEllipse(QPointF(7, 18.5), 3.2, 3.2);
        p.drawEllipse(QPointF(17, 18.5), 3.2, 3.2);
        break;
    }
    case 7:
        page(p, QRectF(3.5, 3.5, 11, 14));
        page(p, QRectF(9.5, 7.5, 11, 14));
        break;
    case 8: {
        p.setPen(QPen(QColor(90, 60, 30), 1));
        p.setBrush(QColor(190, 140, 80));
        p.drawRoundedRect(QRectF(3.5, 4.5, 14, 17), 2, 2);
        p.setBrush(QColor(150, 150, 150));
        p.drawRect(QRectF(7.5, 2.5, 6, 4));
        page(p, QRectF(10.5, 9.5, 10, 12));
        break;
    }
    case 12:
        loupe(p, QPointF(10, 10), 6);
        break;
    case 14: {
        page(p, QRectF(4.5, 2.5, 15, 19));
        p.setPen(QPen(QColor(43, 87, 154), 1, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(7.5, 5.5, 9, 13));
        break;
    }
    case 15:
        page(p, QRectF(3.5, 2.5, 13, 17));
        loupe(p, QPointF(14, 14), 4.5);
        break;
    case 16: {
        p.setPen(QPen(QColor(60, 60, 60), 1));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(7.5, 2.5, 9, 7));
        p.setBrush(QColor(120, 120, 120));
        p.drawRoundedRect(QRectF(2.5, 8.5, 19, 9), 2, 2);
        p.setBrush(Qt::white);
        p.drawRect(QRectF(6.5, 14.5, 11, 7));
        p.setBrush(QColor(90, 200, 90));
        p.drawEllipse(QPointF(18, 11), 1, 1);
        break;
    }
    default:
        return {};
    }
    p.end();
    return QIcon(image);
}
