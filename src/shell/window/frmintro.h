#pragma once

#include <QDialog>

class QLabel;
class QTimer;

// The about window: the product line, the agenda and its data folder. It
// closes on a click, on a key, or by itself: after nine seconds it fades out
// for one second.
class frmIntro final : public QDialog
{
    Q_OBJECT

public:
    frmIntro(const QString &agenda, const QString &dossier, QWidget *parent = nullptr);

    QLabel *lblProduit = nullptr;
    QLabel *lblVersion = nullptr;
    QLabel *lblAgenda = nullptr;
    QTimer *Timer1 = nullptr;   // 9000 ms: the fading begins
    QTimer *Timer2 = nullptr;   // 1000 ms: the fading ends, the window closes

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
