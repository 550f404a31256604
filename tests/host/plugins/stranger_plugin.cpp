#include "stranger_plugin.h"
