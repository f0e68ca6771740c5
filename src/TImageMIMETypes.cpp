#include "TImageMIMETypes.h"

#include <QtAlgorithms>

TImageMIMETypes::TImageMIMETypes() : m_pArray(nullptr) {}

TImageMIMETypes::~TImageMIMETypes()
{
    qDeleteAll(m_ownedStrings);
    delete m_pArray;
}

QStringList* TImageMIMETypes::GetArray()
{
    return m_pArray;
}
