// The one place where the identifiers that the generated header declares are defined.
#include <windows.h>

#include <initguid.h>

#include "platform/com/quenta_produtos.h"
