// The listener's notifications do nothing unless a listener overrides them.
#include "vmp/VMPObserver.h"

VMPObserver::VMPObserver() = default;
VMPObserver::~VMPObserver() = default;

IVMPListener::~IVMPListener() = default;
void IVMPListener::onNotify(int, IVMPPropertySchema*) {}
void IVMPListener::onNotify(int, IVMPComment*) {}
void IVMPListener::onNotify(int, IVMPWorkPlane*) {}
void IVMPListener::onNotify(int, IVMPProperty*) {}
void IVMPListener::onNotify(int, IVMPElementDrawObj*, const std::wstring&, bool) {}
void IVMPListener::onNotify(int, IVMPElement*) {}
void IVMPListener::onNotify(int, IVMPFloor*) {}
void IVMPListener::onNotify(int, IVMPRegion*) {}
void IVMPListener::onBeginEdit() {}
void IVMPListener::onEndEdit() {}
