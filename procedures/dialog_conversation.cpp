#include "procedures/dialog_conversation.h"

#include "geo/angles.h"
#include "core/numbers.h"
#include "instruments/decoders.h"

namespace tavik {
namespace {

DialogAnswer ShotOf(double slope, int32_t hzRaw, int32_t vRaw) {
  DialogAnswer a;
  a.kind = DialogAnswer::Shot;
  a.shot.Slope = slope;
  a.shot.HzRaw = hzRaw;
  a.shot.VRaw = vRaw;
  a.shot.Hz = PackedToRadians(hzRaw);
  a.shot.V = PackedToRadians(vRaw);
  a.shot.HzText = RawAngleText(hzRaw);
  a.shot.VText = RawAngleText(vRaw);
  return a;
}

DialogAnswer ErrorOf(const std::string& title, const std::string& text, const std::string& appended) {
  DialogAnswer a;
  a.kind = DialogAnswer::Error;
  a.Title = title;
  a.Text = text;
  a.Appended = appended;
  return a;
}

}  // namespace

DialogAnswer DecodeSetForDialog(const std::string& line) {
  const SetAnswer s = DecodeSet(line);
  switch (s.kind) {
    case SetAnswer::Observation:
      return ShotOf(s.slope.value_or(0), s.hzRaw, s.vRaw);
    case SetAnswer::Tracking: {
      DialogAnswer a;
      a.kind = DialogAnswer::Tracking;
      a.shot.VRaw = s.vRaw;
      return a;
    }
    case SetAnswer::Error:
      switch (s.error) {
        case SetError::NoPrism:
          return ErrorOf("無法測距", "被測物反射不良或找不到稜鏡.", " 被測物反射不良或找不到稜鏡.");
        case SetError::Tilt:
          return ErrorOf("儀器有問題", "儀器傾斜超出補償範圍, 請整平後再測.", " 儀器傾斜超出補償範圍, 請整平後再測.");
        case SetError::BadDistance: return ErrorOf("SD資料錯誤", "斜距值錯誤.", " 距離值錯誤.");
        default: return ErrorOf("有問題", "ER資料錯誤!", " 不明原因,導致資料錯誤.");
      }
    default:
      return {};
  }
}

void ShowAnswerError(SurveyContext& ctx, const DialogAnswer& a) {
  if (a.Boxed) ctx.dialogs.MsgBox(a.Text, a.Title);
  if (!a.Appended.empty() && ctx.link.AppendOBSBox) ctx.link.AppendOBSBox(a.Appended, a.Red);
}

DialogAnswer DialogConversation::Feed(char c) {
  const std::optional<std::string> frame = framer_.Feed(c, family_ == Family::Trimble ? '>' : '\n');
  if (!frame) return {};
  switch (family_) {
    case Family::Leica: {
      const LeicaAnswer a = DecodeLeica(*frame);
      if (!a.enoughFields || !a.hzRaw || !a.vRaw || !(a.slope.value_or(0) > 0)) return {};
      return ShotOf(a.slope.value_or(0), *a.hzRaw, *a.vRaw);
    }
    case Family::Topcon: {
      const TopconAnswer a = DecodeTopcon(*frame);
      if (a.kind == TopconAnswer::Acknowledge) {
        DialogAnswer r;
        r.kind = DialogAnswer::Acknowledge;
        return r;
      }
      if (a.kind == TopconAnswer::Other) return {};
      DialogAnswer r = ShotOf(a.kind == TopconAnswer::Distance ? a.slope : 0, a.hzRaw, a.vRaw);
      r.Reply = std::string("\x06" "006\x03\r\n", 7);
      return r;
    }
    case Family::Trimble: {
      const TrimbleAnswer a = DecodeTrimble(*frame);
      if (!a.enoughLines || !(a.slope > 0)) return {};
      return ShotOf(a.slope, a.hzRaw, a.vRaw);
    }
    case Family::Trimble3600: {
      const Trimble3600Answer a = DecodeTrimble3600(*frame);
      if (a.v2) return ErrorOf("TAVIK", "垂直角定義錯誤", "");
      if (!(a.slope.value_or(0) > 0)) return {};
      DialogAnswer r = ShotOf(a.slope.value_or(0), num::CLng(a.hz), num::CLng(a.v));
      r.shot.Hz = PackedToRadians(a.hz);
      r.shot.V = PackedToRadians(a.v);
      return r;
    }
    case Family::Pentax: {
      const PentaxAnswer a = DecodePentax(*frame);
      if (!a.valid) {
        DialogAnswer e = ErrorOf("", "", "資料錯誤!!(資料不全)");
        e.Boxed = false;
        e.Red = true;
        return e;
      }
      if (!(a.slope > 0)) return {};
      return ShotOf(a.slope, a.hzRaw, a.vRaw);
    }
    case Family::Set:
      return DecodeSetForDialog(*frame);
    case Family::Keyin:
      return {};
  }
  return {};
}

}  // namespace tavik
