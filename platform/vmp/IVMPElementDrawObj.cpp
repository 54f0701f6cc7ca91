// Out-of-line destructors of the element and solid shape interfaces (their vtables live here).
#include "vmp/IVMPElementDrawObj.h"

IVMPElementDrawObj::~IVMPElementDrawObj() = default;
IVMPSolidShape* IVMPElementDrawObj::getSolidShape() { return nullptr; }
IVMPSolidShape::~IVMPSolidShape() = default;
