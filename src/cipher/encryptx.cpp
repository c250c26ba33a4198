// TEMP placeholder
#include "cipher/encryptx.h"
EnCryptX::EnCryptX(QObject *parent) : QObject(parent) {}
QString DecoderArgument(const QString &a) { return a; }
QString EncoderArgument(const QString &t) { return t; }
