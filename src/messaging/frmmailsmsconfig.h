#pragma once

#include "messaging/configmessagerie.h"
#include "messaging/gsmmodem.h"

#include <QDialog>

#include <array>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

// "Rappels Mails et SMS...": the texts and the server of the reminder mail,
// the texts of the reminder SMS, the modem's port, and a test of each. The
// modem test keeps the port open between its connect and disconnect clicks.
// While a test runs the window keeps painting and logging, but its buttons
// wait for the end.
class frmMailSMSConfig final : public QDialog
{
    Q_OBJECT

public:
    explicit frmMailSMSConfig(QWidget *parent = nullptr);
    ~frmMailSMSConfig() override;

    QTabWidget *SSTab1 = nullptr;
    // The mail page. 0 sender, 1 subject, 4 test address: QLineEdit;
    // 2 first text, 3 last text: QPlainTextEdit.
    std::array<QWidget *, 5> Text1{};
    QComboBox *Combo1 = nullptr;            // SMTP server
    QPushButton *Btn_Mail = nullptr;
    // The sample lines: 1 practitioner and 2 date of the mail, 3 and 4 of the
    // SMS (0 unused).
    std::array<QLabel *, 5> Label2{};
    // The SMS page: 0 first text, 1 last text.
    std::array<QPlainTextEdit *, 2> Text2{};
    QLabel *lblLongueur = nullptr;          // the length hint
    QComboBox *cmbPorts = nullptr;
    QPushButton *cmdRefresh = nullptr;
    QPushButton *cmdConnect = nullptr;
    QLabel *lblDevType = nullptr;
    QLabel *lblManufacturer = nullptr;
    QLabel *lblProvider = nullptr;
    QLabel *lblBauds = nullptr;
    QLabel *lblProtocoles = nullptr;
    QListWidget *List1 = nullptr;           // the exchange log
    QPlainTextEdit *txtOut = nullptr;       // the raw answer
    QGroupBox *Frame5 = nullptr;            // the test message, once a GSM modem answered
    QLineEdit *Text3 = nullptr;             // test number
    QPushButton *cmdSend = nullptr;
    QLabel *lblStatus = nullptr;
    QPushButton *Btn_Valider = nullptr;
    QPushButton *Btn_Annuler = nullptr;

    // The status line; events run so that it shows at once.
    void setStatus(const QString &texte);

protected:
    void reject() override;

private:
    QWidget *pageMail();
    QWidget *pageSms();
    void charger();
    [[nodiscard]] ConfigMessagerie saisie() const;
    void rechercherPorts(bool depuisBouton);
    void majLongueur();
    void Btn_Mail_Click();
    void cmdConnect_Click();
    void connecter();
    void deconnecter();
    void cmdSend_Click();
    void Btn_Valider_Click();
    // Buttons off for the length of a test; the window stays alive.
    void occuper(bool occupe);

    GsmModem m_modem{GsmModem::Copie::Diagnostic};
    int m_port = 0;
    bool m_occupe = false;
};
