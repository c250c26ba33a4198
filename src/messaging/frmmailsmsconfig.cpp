#include "messaging/frmmailsmsconfig.h"

#include "messaging/diagnosticmodem.h"
#include "messaging/mailreminder.h"
#include "messaging/smstext.h"
#include "patients/dialoguesouverts.h"
#include "shell/base/horloge.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

const QString titreBoites = QStringLiteral("Tavonel");
const QString connecter_ = QStringLiteral("&Connecter");
const QString deconnecter_ = QStringLiteral("&Déconnecter");

template <typename T>
T *nomme(T *w, const QString &nom)
{
    w->setObjectName(nom);
    return w;
}

QPushButton *bouton(const QString &nom, const QString &texte, QWidget *parent)
{
    auto *b = nomme(new QPushButton(texte, parent), nom);
    b->setAutoDefault(false);
    return b;
}

// A multi-line text field of the given height in lines, where Tab moves on.
QPlainTextEdit *zone(const QString &nom, int lignes, QWidget *parent)
{
    auto *z = nomme(new QPlainTextEdit(parent), nom);
    z->setTabChangesFocus(true);
    z->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int marges = 2 * (z->frameWidth() + static_cast<int>(z->document()->documentMargin())) + 4;
    z->setFixedHeight(z->fontMetrics().lineSpacing() * lignes + marges);
    return z;
}

// Texts keep Windows line ends, as the reminders and the mail are written
// with them.
QString texteDe(const QWidget *w)
{
    if (const auto *z = qobject_cast<const QPlainTextEdit *>(w))
        return z->toPlainText().replace(u'\n', QLatin1String("\r\n"));
    return qobject_cast<const QLineEdit *>(w)->text();
}

void fixerTexte(QWidget *w, const QString &texte)
{
    if (auto *z = qobject_cast<QPlainTextEdit *>(w))
        z->setPlainText(texte);
    else
        qobject_cast<QLineEdit *>(w)->setText(texte);
}

QLabel *ligneExemple(const QString &nom, const QString &texte, QWidget *parent)
{
    auto *l = nomme(new QLabel(texte, parent), nom);
    l->setAlignment(Qt::AlignCenter);
    QFont f = l->font();
    f.setBold(true);
    l->setFont(f);
    return l;
}

// The pointer of a test that talks to a server; the modem's own waits set
// and restore theirs inside it.
class Sablier final
{
public:
    Sablier() { QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor)); }
    ~Sablier() { QGuiApplication::restoreOverrideCursor(); }
    Sablier(const Sablier &) = delete;
    Sablier &operator=(const Sablier &) = delete;
};

} // namespace

frmMailSMSConfig::frmMailSMSConfig(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmMailSMSConfig"));
    setWindowTitle(QStringLiteral("Rappels Mails et SMS..."));
    setModal(true);
    CompterDialogueOuvert(this);

    SSTab1 = nomme(new QTabWidget(this), QStringLiteral("SSTab1"));
    SSTab1->addTab(pageMail(), QStringLiteral("Mails"));
    SSTab1->addTab(pageSms(), QStringLiteral("SMS"));

    lblStatus = nomme(new QLabel(this), QStringLiteral("lblStatus"));
    lblStatus->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    lblStatus->setMinimumWidth(300);
    Btn_Valider = bouton(QStringLiteral("Btn_Valider"), QStringLiteral("&Valider"), this);
    Btn_Annuler = bouton(QStringLiteral("Btn_Annuler"), QStringLiteral("&Annuler"), this);
    Btn_Valider->setDefault(true);
    auto *bas = new QHBoxLayout;
    bas->addWidget(lblStatus, 1);
    bas->addWidget(Btn_Valider);
    bas->addWidget(Btn_Annuler);
    auto *l = new QVBoxLayout(this);
    l->addWidget(SSTab1, 1);
    l->addLayout(bas);

    connect(Btn_Mail, &QPushButton::clicked, this, &frmMailSMSConfig::Btn_Mail_Click);
    connect(cmdRefresh, &QPushButton::clicked, this, [this] { rechercherPorts(true); });
    connect(cmdConnect, &QPushButton::clicked, this, &frmMailSMSConfig::cmdConnect_Click);
    connect(cmdSend, &QPushButton::clicked, this, &frmMailSMSConfig::cmdSend_Click);
    connect(Btn_Valider, &QPushButton::clicked, this, &frmMailSMSConfig::Btn_Valider_Click);
    connect(Btn_Annuler, &QPushButton::clicked, this, &QDialog::reject);
    connect(&m_modem, &GsmModem::journal, this, [this](const QString &ligne) {
        List1->addItem(ligne);
        List1->scrollToBottom();
    });
    connect(&m_modem, &GsmModem::sortie, txtOut, &QPlainTextEdit::setPlainText);
    connect(&m_modem, &GsmModem::deconnexionDemandee, this, &frmMailSMSConfig::deconnecter);

    charger();
    for (QPlainTextEdit *t : Text2)
        connect(t, &QPlainTextEdit::textChanged, this, &frmMailSMSConfig::majLongueur);
    resize(900, 680);
}

frmMailSMSConfig::~frmMailSMSConfig()
{
    if (m_modem.estConnecte())
        m_modem.msComDisconnect();
}

QWidget *frmMailSMSConfig::pageMail()
{
    auto *page = new QWidget(this);
    auto *entete = new QFormLayout;
    Text1[0] = nomme(new QLineEdit(page), QStringLiteral("Text1(0)"));
    Combo1 = nomme(new QComboBox(page), QStringLiteral("Combo1"));
    Combo1->setEditable(true);
    Combo1->addItems(ServeursSmtpFournisseurs());
    Text1[1] = nomme(new QLineEdit(page), QStringLiteral("Text1(1)"));
    entete->addRow(QStringLiteral("Adresse de messagerie : "), Text1[0]);
    entete->addRow(QStringLiteral("Serveur SMTP : "), Combo1);
    entete->addRow(QStringLiteral("Sujet du Mail : "), Text1[1]);

    auto *corps = new QGroupBox(QStringLiteral("Texte du mail"), page);
    auto *lc = new QVBoxLayout(corps);
    Text1[2] = zone(QStringLiteral("Text1(2)"), 2, corps);
    Label2[1] = ligneExemple(QStringLiteral("Label2(1)"), QString::fromUtf16(kPraticienExemple), corps);
    Label2[2] = ligneExemple(QStringLiteral("Label2(2)"), QStringLiteral("le JOUR XX Mois 20YY"), corps);
    Text1[3] = zone(QStringLiteral("Text1(3)"), 7, corps);
    // The address block of the practice takes the room that is left.
    Text1[3]->setMinimumHeight(Text1[3]->height());
    Text1[3]->setMaximumHeight(QWIDGETSIZE_MAX);
    lc->addWidget(new QLabel(QStringLiteral("Texte avant le nom du praticien :"), corps));
    lc->addWidget(Text1[2]);
    lc->addWidget(Label2[1]);
    lc->addWidget(Label2[2]);
    lc->addWidget(new QLabel(QStringLiteral("Texte après la date :"), corps));
    lc->addWidget(Text1[3], 1);

    auto *test = new QGroupBox(QStringLiteral("Essai"), page);
    auto *lt = new QHBoxLayout(test);
    Text1[4] = nomme(new QLineEdit(test), QStringLiteral("Text1(4)"));
    Btn_Mail = bouton(QStringLiteral("Btn_Mail"), QStringLiteral("Envoyer un &mail de test"), test);
    lt->addWidget(new QLabel(QStringLiteral("Adresse de test : "), test));
    lt->addWidget(Text1[4], 1);
    lt->addWidget(Btn_Mail);

    auto *l = new QVBoxLayout(page);
    l->addLayout(entete);
    l->addWidget(corps, 1);
    l->addWidget(test);
    return page;
}

QWidget *frmMailSMSConfig::pageSms()
{
    auto *page = new QWidget(this);
    auto *texte = new QGroupBox(QStringLiteral("Texte du SMS"), page);
    auto *lt = new QVBoxLayout(texte);
    Text2[0] = zone(QStringLiteral("Text2(0)"), 3, texte);
    Label2[3] = ligneExemple(QStringLiteral("Label2(3)"), QString::fromUtf16(kPraticienExemple), texte);
    Label2[4] = ligneExemple(QStringLiteral("Label2(4)"), QStringLiteral("le JOUR XX Mois 20YY"), texte);
    Text2[1] = zone(QStringLiteral("Text2(1)"), 4, texte);
    lblLongueur = nomme(new QLabel(texte), QStringLiteral("lblLongueur"));
    auto *longueur = new QHBoxLayout;
    longueur->addWidget(new QLabel(QStringLiteral("Longueur du message :"), texte));
    longueur->addWidget(lblLongueur);
    longueur->addStretch();
    auto *prudence = new QLabel(QStringLiteral("La longueur du message ne doit pas dépasser 160 caractères !!!"), texte);
    prudence->setWordWrap(true);
    lt->addWidget(new QLabel(QStringLiteral("Texte avant le nom du praticien :"), texte));
    lt->addWidget(Text2[0]);
    lt->addWidget(Label2[3]);
    lt->addWidget(Label2[4]);
    lt->addWidget(new QLabel(QStringLiteral("Texte après la date :"), texte));
    lt->addWidget(Text2[1]);
    lt->addLayout(longueur);
    lt->addWidget(prudence);
    lt->addStretch();

    auto *modem = new QGroupBox(QStringLiteral("Modem GSM"), page);
    cmbPorts = nomme(new QComboBox(modem), QStringLiteral("cmbPorts"));
    cmbPorts->setMinimumContentsLength(4);
    cmdRefresh = bouton(QStringLiteral("cmdRefresh"), QStringLiteral("&Rechercher"), modem);
    cmdConnect = bouton(QStringLiteral("cmdConnect"), connecter_, modem);
    auto *ports = new QHBoxLayout;
    ports->addWidget(new QLabel(QStringLiteral("Port COM :"), modem));
    ports->addWidget(cmbPorts);
    ports->addWidget(cmdRefresh);
    ports->addStretch();
    ports->addWidget(cmdConnect);
    auto *infos = new QFormLayout;
    const auto etiquette = [&](QLabel *&l, const QString &nom, const QString &texte) {
        l = nomme(new QLabel(modem), nom);
        l->setTextInteractionFlags(Qt::TextSelectableByMouse);
        infos->addRow(texte, l);
    };
    etiquette(lblDevType, QStringLiteral("lblDevType"), QStringLiteral("Type :"));
    etiquette(lblManufacturer, QStringLiteral("lblManufacturer"), QStringLiteral("Fabricant :"));
    etiquette(lblProvider, QStringLiteral("lblProvider"), QStringLiteral("Opérateur :"));
    etiquette(lblBauds, QStringLiteral("lblBauds"), QStringLiteral("Vitesse :"));
    etiquette(lblProtocoles, QStringLiteral("lblProtocoles"), QStringLiteral("Jeux de caractères :"));
    List1 = nomme(new QListWidget(modem), QStringLiteral("List1"));
    txtOut = zone(QStringLiteral("txtOut"), 3, modem);
    txtOut->setReadOnly(true);
    Frame5 = nomme(new QGroupBox(QStringLiteral("Essai d'envoi"), modem), QStringLiteral("Frame5"));
    Frame5->setEnabled(false);
    Text3 = nomme(new QLineEdit(Frame5), QStringLiteral("Text3"));
    cmdSend = bouton(QStringLiteral("cmdSend"), QStringLiteral("&Envoyer le SMS de test"), Frame5);
    auto *lf = new QHBoxLayout(Frame5);
    lf->addWidget(new QLabel(QStringLiteral("Numéro de test :"), Frame5));
    lf->addWidget(Text3, 1);
    lf->addWidget(cmdSend);
    auto *lm = new QVBoxLayout(modem);
    lm->addLayout(ports);
    lm->addLayout(infos);
    lm->addWidget(List1, 1);
    lm->addWidget(txtOut);
    lm->addWidget(Frame5);

    auto *l = new QHBoxLayout(page);
    l->addWidget(texte, 1);
    l->addWidget(modem, 1);
    return page;
}

void frmMailSMSConfig::setStatus(const QString &texte)
{
    lblStatus->setText(texte);
    QCoreApplication::processEvents();
}

void frmMailSMSConfig::charger()
{
    const QString praticien = LignePraticienExemple();
    const QString date = DateExempleMail(Horloge::aujourdhui());
    Label2[1]->setText(praticien);
    Label2[3]->setText(praticien);
    Label2[2]->setText(date);
    Label2[4]->setText(date);

    const ConfigMessagerie c = LireConfigMessagerie();
    fixerTexte(Text1[0], c.from);
    Combo1->setCurrentIndex(-1);
    Combo1->setEditText(c.smtp);
    fixerTexte(Text1[1], c.subject);
    fixerTexte(Text1[2], c.mailFirst);
    fixerTexte(Text1[3], c.mailLast);
    fixerTexte(Text1[4], c.mailTest);
    Text2[0]->setPlainText(c.smsFirst);
    Text2[1]->setPlainText(c.smsLast);
    Text3->setText(c.smsTest);

    rechercherPorts(false);
    // A port set up before and absent today (modem unplugged) stays the
    // choice, so that saving the texts does not forget it.
    if (!c.com.isEmpty() && cmbPorts->findText(c.com) < 0)
        cmbPorts->addItem(c.com);
    const int i = cmbPorts->findText(c.com);
    if (i >= 0)
        cmbPorts->setCurrentIndex(i);
    majLongueur();
}

ConfigMessagerie frmMailSMSConfig::saisie() const
{
    ConfigMessagerie c;
    c.from = texteDe(Text1[0]);
    c.smtp = Combo1->currentText();
    c.subject = texteDe(Text1[1]);
    c.mailFirst = texteDe(Text1[2]);
    c.mailLast = texteDe(Text1[3]);
    c.mailTest = texteDe(Text1[4]);
    c.smsFirst = texteDe(Text2[0]);
    c.smsLast = texteDe(Text2[1]);
    c.smsTest = Text3->text();
    c.com = cmbPorts->currentText();
    return c;
}

void frmMailSMSConfig::rechercherPorts(bool depuisBouton)
{
    const Sablier sablier;
    cmbPorts->clear();
    const QList<int> ports = RechercherPorts(depuisBouton, [this](const QString &s) { setStatus(s); });
    for (int n : ports)
        cmbPorts->addItem(QString::number(n));
    cmbPorts->setCurrentIndex(ports.isEmpty() ? -1 : 0);
}

void frmMailSMSConfig::majLongueur()
{
    const LongueurIndication l =
        LongueurMessage(texteDe(Text2[0]), Label2[3]->text(), Label2[4]->text(), texteDe(Text2[1]));
    lblLongueur->setText(QString::number(l.longueur));
    QFont f = lblLongueur->font();
    f.setBold(l.alerte);
    lblLongueur->setFont(f);
    QPalette p = lblLongueur->palette();
    p.setColor(QPalette::WindowText, QColor(l.couleur & 0xFF, (l.couleur >> 8) & 0xFF, (l.couleur >> 16) & 0xFF));
    lblLongueur->setPalette(p);
}

void frmMailSMSConfig::occuper(bool occupe)
{
    m_occupe = occupe;
    for (QPushButton *b : {Btn_Mail, cmdRefresh, cmdConnect, cmdSend, Btn_Valider, Btn_Annuler})
        b->setEnabled(!occupe);
}

void frmMailSMSConfig::Btn_Mail_Click()
{
    const ConfigMessagerie c = saisie();
    switch (VerifierMailTest(c.mailTest, c.smtp)) {
    case DefautMailTest::Adresse:
        Prompt::bip();
        Text1[4]->setFocus();
        return;
    case DefautMailTest::Serveur:
        Prompt::bip();
        Combo1->setFocus();
        return;
    case DefautMailTest::Aucun:
        break;
    }
    occuper(true);
    bool reussi = false;
    QString message;
    {
        const Sablier sablier;
        setStatus(QStringLiteral("Envoi du mail de test à ") + c.mailTest + QStringLiteral("..."));
        message = EnvoyerMailTest(c, Label2[1]->text(), Label2[2]->text(), &reussi);
        setStatus(QString());
    }
    occuper(false);
    Prompt::informer(QStringLiteral("Test"), message, reussi ? Prompt::Icone::Information : Prompt::Icone::Exclamation);
}

void frmMailSMSConfig::cmdConnect_Click()
{
    if (m_modem.estConnecte())
        deconnecter();
    else
        connecter();
}

void frmMailSMSConfig::connecter()
{
    if (cmbPorts->currentIndex() < 0) {
        Prompt::informer(titreBoites, QStringLiteral("Veuillez sélectionner un port valide..."), Prompt::Icone::Exclamation);
        cmbPorts->setFocus();
        return;
    }
    const int port = static_cast<int>(LireEntier(cmbPorts->currentText()));
    occuper(true);
    cmdConnect->setText(deconnecter_);
    setStatus(QStringLiteral("Connecxion en cours..."));
    if (m_modem.msComConnect(port) == 0) {
        Prompt::informer(titreBoites,
                         QStringLiteral("Désolé, connexion impossible. Vérifiez la configuration des ports et vos "
                                        "connections avec le Modem GSM."),
                         Prompt::Icone::Exclamation);
        m_port = port;
        deconnecter();
        occuper(false);
        return;
    }
    m_port = port;
    setStatus(QStringLiteral("Connecté au Port: %1").arg(port));
    setStatus(QStringLiteral("Récupération du statut...."));
    InfosModem infos;
    // When the modem does not answer, the driver has already asked for the
    // port to be closed (deconnecter).
    if (m_modem.getMobileInfo(infos)) {
        lblDevType->setText(infos.devType);
        lblManufacturer->setText(infos.manufacturer);
        lblProvider->setText(infos.provider);
        lblBauds->setText(infos.bauds);
        lblProtocoles->setText(infos.protocoles);
        setStatus(StatutConnexion(port, etatModem().ModemHasGSM));
        Frame5->setEnabled(etatModem().ModemHasGSM);
    }
    GsmModem::restaurerPointeur();
    occuper(false);
}

void frmMailSMSConfig::deconnecter()
{
    cmdConnect->setText(connecter_);
    m_modem.msComDisconnect();
    List1->clear();
    txtOut->clear();
    for (QLabel *l : {lblDevType, lblManufacturer, lblProvider, lblBauds, lblProtocoles})
        l->clear();
    Frame5->setEnabled(false);
    setStatus(QStringLiteral("Déconnecté du Port COM%1").arg(m_port));
    m_port = 0;
}

void frmMailSMSConfig::cmdSend_Click()
{
    occuper(true);
    EnvoyerSMSTest(m_modem, texteDe(Text2[0]), Label2[3]->text(), Label2[4]->text(), texteDe(Text2[1]),
                   Text3->text(), [this](const QString &s) { setStatus(s); });
    // After a time-out the driver leaves the busy pointer to its caller.
    GsmModem::restaurerPointeur();
    occuper(false);
}

void frmMailSMSConfig::Btn_Valider_Click()
{
    QString erreur;
    if (!EcrireConfigMessagerie(saisie(), &erreur)) {
        Prompt::informer(QStringLiteral("Erreur"),
                         QStringLiteral("Les réglages des rappels ne peuvent être enregistrés :\n") + erreur
                             + QStringLiteral("\nVos saisies sont conservées dans la fenêtre."),
                         Prompt::Icone::Critique);
        return;
    }
    accept();
}

void frmMailSMSConfig::reject()
{
    // A test in progress ends first: its waits run inside this window.
    if (m_occupe)
        return;
    QDialog::reject();
}
