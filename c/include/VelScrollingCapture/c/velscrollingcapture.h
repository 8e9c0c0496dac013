#pragma once

/// \file
/// VelScrollingCapture for C: joins the captures of a scrolling window into one image.
///
///     vel_session *session;
///     vel_session_create(NULL, &session, NULL, 0);
///     vel_session_add_file(session, "first.png", NULL, NULL);
///     vel_session_add_file(session, "second.png", NULL, NULL);
///     vel_stitched *stitched;
///     vel_session_stitch(session, NULL, NULL, &stitched);
///     vel_stitched_write(stitched, "page.png", NULL, NULL, NULL);
///     vel_stitched_free(stitched);
///     vel_session_free(session);
///
/// Each of these but the last two answers with a vel_result, which is VEL_OK when all went well.
///
/// **Handles.** What a function makes is the caller's to free, once, with the function of its kind;
/// each of those accepts NULL. Handles live independently of each other: a picture may be used
/// after its session was freed.
///
/// **Threads.** A handle serves one call at a time, and a session counts as one handle with all
/// that vel_session_stitch has made of it and the parts of that. A call that comes while another
/// one is at work, from whatever thread or from within a callback, changes nothing and answers
/// VEL_BUSY; none ever waits for another. A handle may be freed while a call is at work with it:
/// the call goes on, and what it needs is freed at its end. After that nobody may use the handle.
///
/// **Structures** begin with their size, which the caller states, so that a program goes on working
/// with a library whose structures have got more fields. What a structure lacks counts as its
/// default. The functions that end in _init state the size and set all fields to their defaults.
///
/// **Failures.** No C++ exception leaves any function. What a function gives through a pointer is
/// undefined unless it answers VEL_OK; a handle is NULL then.

#include <VelScrollingCapture/c/images.h>
#include <VelScrollingCapture/c/messages.h>
#include <VelScrollingCapture/c/picture.h>
#include <VelScrollingCapture/c/results.h>
#include <VelScrollingCapture/c/session.h>
#include <VelScrollingCapture/c/stitched.h>
#include <VelScrollingCapture/c/stitcher.h>
