#pragma once
/* C ABI of the FANUC Robocut machine module, for hosts written in any language. */
