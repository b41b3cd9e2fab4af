#pragma once

/// Every public name of kvbase.

#include "kvbase/base/export.h"
#include "kvbase/base/here.h"
#include "kvbase/base/types.h"
#include "kvbase/base/version.h"

#include "kvbase/text/kv_string.h"
#include "kvbase/text/kv_string7bit.h"
#include "kvbase/text/kv_system_string.h"
#include "kvbase/text/kv_text_encoding.h"
#include "kvbase/text/kv_utf.h"
#include "kvbase/text/kv_utf_string.h"
#include "kvbase/text/std_string_utils.h"
#include "kvbase/text/unicode_utils.h"

#include "kvbase/runtime/kv_attribute.h"
#include "kvbase/runtime/kv_checksum.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/runtime/kv_lock.h"
#include "kvbase/runtime/kv_number_text.h"
#include "kvbase/runtime/kv_platform_facts.h"
#include "kvbase/runtime/kv_tracer.h"
#include "kvbase/runtime/kv_url.h"
#include "kvbase/runtime/sharelib.h"

#include "kvbase/stream/kv_cipher.h"
#include "kvbase/stream/kv_fstream.h"
#include "kvbase/stream/kv_sstream.h"
#include "kvbase/stream/kv_stream.h"

#include "kvbase/univval/kv_dict_path.h"
#include "kvbase/univval/kv_uval.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"
#include "kvbase/univval/kv_uval_text.h"

#include "kvbase/numerics/kv_math.h"
#include "kvbase/numerics/kv_optimizer.h"
#include "kvbase/numerics/kv_permutations.h"
#include "kvbase/numerics/kv_poly.h"
#include "kvbase/numerics/kv_simplex.h"
#include "kvbase/numerics/kv_vectors.h"
#include "kvbase/color/kv_color_space.h"
