#include "faceless_plugin.h"
