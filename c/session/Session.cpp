#include <cstdlib>
#include <memory>
#include <utility>

#include <c/calls/Call.h>
#include <c/calls/ProgressRelay.h>
#include <c/calls/SizedStruct.h>
#include <c/pictures/CaptureFile.h>
#include <c/pictures/Images.h>
#include <c/pictures/Picture.h>
#include <c/session/Joins.h>
#include <c/session/SessionSettings.h>
#include <c/session/Stitched.h>

#include <VelScrollingCapture/c/session.h>
#include <VelScrollingCapture/session/CaptureSession.h>

using namespace ScrollingCapture;
using namespace ScrollingCapture::C;

/// A session that a caller holds.
struct vel_session : Handle {
  explicit vel_session(const SessionSettings& settings)
      : Handle(std::make_shared<Gate>()),
        session(settings),
        stitchesOnce(settings.engine == Engine::PhaseCorrelation) {}

  /// @param motion as the caller prescribes it; may be null
  void Add(const Program::CaptureImage& capture, const vel_motion* motion);

  std::unique_ptr<vel_stitched> Stitch(ProgressRelay& relay);

  CaptureSession session;
  CaptureOutcome lastOutcome;  ///< of what was handed over last

 private:
  void RequireCapturesInPlace() const;

  const bool stitchesOnce;
  bool isUsedUp = false;
  bool hasCaptures = false;
  Program::ImageMetadata metadata;  ///< of the first capture
};

namespace {

/// Throws InvalidArgument when captures that are so far from each other have nothing in common.
Translation PrescribedMotion(const vel_motion& motion, const cv::Size& capture) {
  InRange(motion.rows, 1 - capture.height, capture.height - 1, "the rows of the motion");
  InRange(motion.columns, 1 - capture.width, capture.width - 1, "the columns of the motion");
  return {motion.rows, motion.columns};
}

vel_outcome OutcomeOf(const CaptureOutcome& outcome) {
  vel_outcome told = {};
  told.state = static_cast<int>(outcome.state);
  told.joined_to = -1;
  if (outcome.placed) {
    told.is_placed = 1;
    told.part = outcome.placed->part - 1;
    told.row = outcome.placed->place.row;
    told.column = outcome.placed->place.column;
    C::Tell(outcome.placed->join, outcome.placed->joinedTo, told);
  }
  return told;
}

/// The same for captures from memory and from files.
void AddCapture(vel_session& session, const Program::CaptureImage& capture,
                const vel_motion* motion, vel_outcome* outcome) {
  if (outcome != nullptr) {
    StatedSize(outcome, "vel_outcome");  // before anything is changed
  }
  session.Add(capture, motion);
  if (outcome != nullptr) {
    Give(OutcomeOf(session.lastOutcome), outcome, "vel_outcome");
  }
}

cv::Mat PreviewOf(const CaptureSession& session) {
  const cv::Mat preview = session.Preview();
  if (preview.empty()) {
    throw InvalidArgument(
        "there is no preview: the settings ask for none, or for a box that leaves less than one "
        "pixel of its shorter side");
  }
  return preview.clone();
}

}  // namespace

void vel_session::RequireCapturesInPlace() const {
  if (isUsedUp) {
    throw CallFailure(VEL_ALREADY_STITCHED, vel_result_text(VEL_ALREADY_STITCHED));
  }
}

void vel_session::Add(const Program::CaptureImage& capture, const vel_motion* motion) {
  RequireCapturesInPlace();
  IncomingCapture incoming = {capture.pixels, {}, {}};
  if (motion != nullptr) {
    incoming.motion = PrescribedMotion(*motion, capture.pixels.size());
  }
  lastOutcome = session.Add(incoming);
  if (lastOutcome.state == CaptureOutcome::State::Unusable) {
    CopyMessage(lastOutcome.reason.c_str(), LastMessage().data(), LastMessage().size());
    return;
  }
  if (!hasCaptures) {
    metadata = capture.metadata;
  }
  hasCaptures = true;
}

std::unique_ptr<vel_stitched> vel_session::Stitch(ProgressRelay& relay) {
  RequireCapturesInPlace();
  if (!hasCaptures) {
    throw CallFailure(VEL_NO_CAPTURES, vel_result_text(VEL_NO_CAPTURES));
  }
  isUsedUp = stitchesOnce;
  std::optional<SessionResult> result = session.Stitch(&relay);
  if (!result) {
    ThrowStitchFailure(relay);
  }
  return std::make_unique<vel_stitched>(SharedGate(), std::move(*result), metadata);
}

void vel_outcome_init(vel_outcome* outcome, size_t struct_size) {
  Initialise(outcome, struct_size, {});
}

vel_result vel_session_create(const vel_session_settings* settings, vel_session** session,
                              char* text, size_t size) {
  return Create(session, text, size, [=] { return new vel_session(SettingsOf(settings)); });
}

vel_result vel_session_add(vel_session* session, const vel_source_image* image,
                           const vel_motion* motion, vel_outcome* outcome) {
  return Call(session, [=](vel_session& called) {
    AddCapture(called, {CaptureOf(image), {}}, motion, outcome);
  });
}

vel_result vel_session_add_file(vel_session* session, const char* path, const vel_motion* motion,
                                vel_outcome* outcome) {
  return Call(session, [=](vel_session& called) {
    AddCapture(called, ReadCaptureFile(path), motion, outcome);
  });
}

vel_result vel_session_alternative(vel_session* session, size_t index, vel_motion* motion) {
  return Call(session, [=](const vel_session& called) {
    const auto& placed = called.lastOutcome.placed;
    const std::vector<Translation> alternatives =
        placed ? placed->join.alternatives : std::vector<Translation>();
    *Required(motion, "motion") = MotionOf(ElementOf(alternatives, index, "index"));
  });
}

vel_result vel_session_exceeds_memory_limit(vel_session* session, int32_t* exceeds) {
  return Call(session, [=](const vel_session& called) {
    *Required(exceeds, "exceeds") = called.session.ExceedsMemoryLimit() ? 1 : 0;
  });
}

vel_result vel_session_preview(vel_session* session, vel_picture** preview) {
  return Call(session, [=](const vel_session& called) {
    *Required(preview, "preview") = nullptr;
    *preview = new vel_picture(PreviewOf(called.session));
  });
}

vel_result vel_session_stitch(vel_session* session, vel_progress progress, void* user,
                              vel_stitched** stitched) {
  return Call(session, [=](vel_session& called) {
    *Required(stitched, "stitched") = nullptr;
    ProgressRelay relay(progress, user);
    *stitched = called.Stitch(relay).release();
  });
}

vel_result vel_session_message(vel_session* session, char* text, size_t size) {
  return GiveMessage(session, text, size);
}

void vel_session_free(vel_session* session) { Free(session); }
