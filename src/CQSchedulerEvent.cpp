#include "CQSchedulerEvent.h"

CQSchedulerEvent::CQSchedulerEvent(CQActive* active) : QEvent(QEvent::User), m_pActive(active) {}

CQSchedulerEvent::~CQSchedulerEvent() = default;
