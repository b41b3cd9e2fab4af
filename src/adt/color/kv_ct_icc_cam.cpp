#include "kvbase/color/kv_ct_icc_cam.h"

#include <algorithm>
#include <cstddef>

#include "adt/color/color_kernels.h"

KV_CTIccCam::KV_CTIccCam() = default;

void KV_CTIccCam::XYZ2Jab(float *xyz, float *jab, int count) const {
    if (count > 0) kv::detail::colorKernels().xyzToJab(m_model, xyz, jab, static_cast<std::size_t>(count));
}

void KV_CTIccCam::Jab2XYZ(float *jab, float *xyz, int count) const {
    if (count > 0) kv::detail::colorKernels().jabToXyz(m_model, jab, xyz, static_cast<std::size_t>(count));
}

void KV_CTIccCam::GetParameter_WhitePoint(float *out) const { std::copy_n(m_model.whitePoint, 3, out); }

void KV_CTIccCam::SetParameter_La(float value) {
    m_model.La = value;
    m_model.CalcCoefficients();
}

void KV_CTIccCam::SetParameter_Yb(float value) {
    m_model.Yb = value;
    m_model.CalcCoefficients();
}

void KV_CTIccCam::SetParameter_C(float value) {
    m_model.C = value;
    m_model.CalcCoefficients();
}

void KV_CTIccCam::SetParameter_Nc(float value) {
    m_model.Nc = value;
    m_model.CalcCoefficients();
}

void KV_CTIccCam::SetParameter_F(float value) {
    m_model.F = value;
    m_model.CalcCoefficients();
}

void KV_CTIccCam::SetParameter_WhitePoint(float *whitePoint) {
    std::copy_n(whitePoint, 3, m_model.whitePoint);
    m_model.CalcCoefficients();
}
