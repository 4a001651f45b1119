#include "debug/cups_names.h"

#include <cstdio>

#include "debug/raw_value.h"

const char* to_string(cups_sc_status_e value) {
  switch (raw_value(value)) {
    case CUPS_SC_STATUS_NONE: return "CUPS_SC_STATUS_NONE";
    case CUPS_SC_STATUS_OK: return "CUPS_SC_STATUS_OK";
    case CUPS_SC_STATUS_IO_ERROR: return "CUPS_SC_STATUS_IO_ERROR";
    case CUPS_SC_STATUS_TIMEOUT: return "CUPS_SC_STATUS_TIMEOUT";
    case CUPS_SC_STATUS_NO_RESPONSE: return "CUPS_SC_STATUS_NO_RESPONSE";
    case CUPS_SC_STATUS_BAD_MESSAGE: return "CUPS_SC_STATUS_BAD_MESSAGE";
    case CUPS_SC_STATUS_TOO_BIG: return "CUPS_SC_STATUS_TOO_BIG";
    case CUPS_SC_STATUS_NOT_IMPLEMENTED: return "CUPS_SC_STATUS_NOT_IMPLEMENTED";
    default: return "UNKNOWN";
  }
}

const char* to_string(cups_adv_e value) {
  static char no_name[sizeof("cups_adv_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_ADVANCE_NONE: return "CUPS_ADVANCE_NONE";
    case CUPS_ADVANCE_FILE: return "CUPS_ADVANCE_FILE";
    case CUPS_ADVANCE_JOB: return "CUPS_ADVANCE_JOB";
    case CUPS_ADVANCE_SET: return "CUPS_ADVANCE_SET";
    case CUPS_ADVANCE_PAGE: return "CUPS_ADVANCE_PAGE";
    default:
      sprintf(no_name, "cups_adv_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_bool_e value) {
  static char no_name[sizeof("cups_bool_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_FALSE: return "CUPS_FALSE";
    case CUPS_TRUE: return "CUPS_TRUE";
    default:
      sprintf(no_name, "cups_bool_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_cspace_e value) {
  static char no_name[sizeof("cups_cspace_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_CSPACE_W: return "CUPS_CSPACE_W";
    case CUPS_CSPACE_RGB: return "CUPS_CSPACE_RGB";
    case CUPS_CSPACE_RGBA: return "CUPS_CSPACE_RGBA";
    case CUPS_CSPACE_K: return "CUPS_CSPACE_K";
    case CUPS_CSPACE_CMY: return "CUPS_CSPACE_CMY";
    case CUPS_CSPACE_YMC: return "CUPS_CSPACE_YMC";
    case CUPS_CSPACE_CMYK: return "CUPS_CSPACE_CMYK";
    case CUPS_CSPACE_YMCK: return "CUPS_CSPACE_YMCK";
    case CUPS_CSPACE_KCMY: return "CUPS_CSPACE_KCMY";
    case CUPS_CSPACE_KCMYcm: return "CUPS_CSPACE_KCMYcm";
    case CUPS_CSPACE_GMCK: return "CUPS_CSPACE_GMCK";
    case CUPS_CSPACE_GMCS: return "CUPS_CSPACE_GMCS";
    case CUPS_CSPACE_WHITE: return "CUPS_CSPACE_WHITE";
    case CUPS_CSPACE_GOLD: return "CUPS_CSPACE_GOLD";
    case CUPS_CSPACE_SILVER: return "CUPS_CSPACE_SILVER";
    case CUPS_CSPACE_CIEXYZ: return "CUPS_CSPACE_CIEXYZ";
    case CUPS_CSPACE_CIELab: return "CUPS_CSPACE_CIELab";
    case CUPS_CSPACE_RGBW: return "CUPS_CSPACE_RGBW";
    case CUPS_CSPACE_SW: return "CUPS_CSPACE_SW";
    case CUPS_CSPACE_SRGB: return "CUPS_CSPACE_SRGB";
    case CUPS_CSPACE_ADOBERGB: return "CUPS_CSPACE_ADOBERGB";
    case CUPS_CSPACE_ICC1: return "CUPS_CSPACE_ICC1";
    case CUPS_CSPACE_ICC2: return "CUPS_CSPACE_ICC2";
    case CUPS_CSPACE_ICC3: return "CUPS_CSPACE_ICC3";
    case CUPS_CSPACE_ICC4: return "CUPS_CSPACE_ICC4";
    case CUPS_CSPACE_ICC5: return "CUPS_CSPACE_ICC5";
    case CUPS_CSPACE_ICC6: return "CUPS_CSPACE_ICC6";
    case CUPS_CSPACE_ICC7: return "CUPS_CSPACE_ICC7";
    case CUPS_CSPACE_ICC8: return "CUPS_CSPACE_ICC8";
    case CUPS_CSPACE_ICC9: return "CUPS_CSPACE_ICC9";
    case CUPS_CSPACE_ICCA: return "CUPS_CSPACE_ICCA";
    case CUPS_CSPACE_ICCB: return "CUPS_CSPACE_ICCB";
    case CUPS_CSPACE_ICCC: return "CUPS_CSPACE_ICCC";
    case CUPS_CSPACE_ICCD: return "CUPS_CSPACE_ICCD";
    case CUPS_CSPACE_ICCE: return "CUPS_CSPACE_ICCE";
    case CUPS_CSPACE_ICCF: return "CUPS_CSPACE_ICCF";
    case CUPS_CSPACE_DEVICE1: return "CUPS_CSPACE_DEVICE1";
    case CUPS_CSPACE_DEVICE2: return "CUPS_CSPACE_DEVICE2";
    case CUPS_CSPACE_DEVICE3: return "CUPS_CSPACE_DEVICE3";
    case CUPS_CSPACE_DEVICE4: return "CUPS_CSPACE_DEVICE4";
    case CUPS_CSPACE_DEVICE5: return "CUPS_CSPACE_DEVICE5";
    case CUPS_CSPACE_DEVICE6: return "CUPS_CSPACE_DEVICE6";
    case CUPS_CSPACE_DEVICE7: return "CUPS_CSPACE_DEVICE7";
    case CUPS_CSPACE_DEVICE8: return "CUPS_CSPACE_DEVICE8";
    case CUPS_CSPACE_DEVICE9: return "CUPS_CSPACE_DEVICE9";
    case CUPS_CSPACE_DEVICEA: return "CUPS_CSPACE_DEVICEA";
    case CUPS_CSPACE_DEVICEB: return "CUPS_CSPACE_DEVICEB";
    case CUPS_CSPACE_DEVICEC: return "CUPS_CSPACE_DEVICEC";
    case CUPS_CSPACE_DEVICED: return "CUPS_CSPACE_DEVICED";
    case CUPS_CSPACE_DEVICEE: return "CUPS_CSPACE_DEVICEE";
    case CUPS_CSPACE_DEVICEF: return "CUPS_CSPACE_DEVICEF";
    default:
      sprintf(no_name, "cups_cspace_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_cut_e value) {
  static char no_name[sizeof("cups_cut_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_CUT_NONE: return "CUPS_CUT_NONE";
    case CUPS_CUT_FILE: return "CUPS_CUT_FILE";
    case CUPS_CUT_JOB: return "CUPS_CUT_JOB";
    case CUPS_CUT_SET: return "CUPS_CUT_SET";
    case CUPS_CUT_PAGE: return "CUPS_CUT_PAGE";
    default:
      sprintf(no_name, "cups_cut_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_edge_e value) {
  static char no_name[sizeof("cups_edge_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_EDGE_TOP: return "CUPS_EDGE_TOP";
    case CUPS_EDGE_RIGHT: return "CUPS_EDGE_RIGHT";
    case CUPS_EDGE_BOTTOM: return "CUPS_EDGE_BOTTOM";
    case CUPS_EDGE_LEFT: return "CUPS_EDGE_LEFT";
    default:
      sprintf(no_name, "cups_edge_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_jog_e value) {
  static char no_name[sizeof("cups_jog_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_JOG_NONE: return "CUPS_JOG_NONE";
    case CUPS_JOG_FILE: return "CUPS_JOG_FILE";
    case CUPS_JOG_JOB: return "CUPS_JOG_JOB";
    case CUPS_JOG_SET: return "CUPS_JOG_SET";
    default:
      sprintf(no_name, "cups_jog_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_order_e value) {
  static char no_name[sizeof("cups_order_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_ORDER_CHUNKED: return "CUPS_ORDER_CHUNKED";
    case CUPS_ORDER_BANDED: return "CUPS_ORDER_BANDED";
    case CUPS_ORDER_PLANAR: return "CUPS_ORDER_PLANAR";
    default:
      sprintf(no_name, "cups_order_e(%d)", raw_value(value));
      return no_name;
  }
}

const char* to_string(cups_orient_e value) {
  static char no_name[sizeof("cups_orient_e(-2147483648)")];
  switch (raw_value(value)) {
    case CUPS_ORIENT_0: return "CUPS_ORIENT_0";
    case CUPS_ORIENT_90: return "CUPS_ORIENT_90";
    case CUPS_ORIENT_180: return "CUPS_ORIENT_180";
    case CUPS_ORIENT_270: return "CUPS_ORIENT_270";
    default:
      sprintf(no_name, "cups_orient_e(%d)", raw_value(value));
      return no_name;
  }
}
