package com.example.camera

import android.graphics.ImageFormat
import android.media.Image
import java.io.Closeable
import java.io.File
import java.nio.ByteBuffer

/**
 * Beautifies camera frames, on a thread of its own, so that it may be made and closed anywhere. Not thread-safe:
 * one call at a time.
 */
class Beautifier : Closeable {
    private var handle = nativeCreate()
    private var frame: ByteBuffer = ByteBuffer.allocateDirect(0)

    /** Why the last [process] returned null. */
    var reason: String? = null
        private set

    /**
     * From the next frame on: [smoothing] and [whitening] from 0 to 1, and the colors of the table in [lut] mixed
     * in by [intensity], 0 to 1. All at 0, or without a table, frames stay as they are.
     */
    fun set(smoothing: Float, whitening: Float, lut: File? = null, intensity: Float = 1f) =
        nativeSet(open(), smoothing, whitening, (lut?.absolutePath ?: "").toByteArray(), intensity)

    /**
     * The beautified [image] as NV12 without padding, or null when it could not be made: [reason] says why. The
     * buffer is overwritten by the next call. [image] may be closed as soon as this returns.
     */
    fun process(image: Image): ByteBuffer? {
        require(image.format == ImageFormat.YUV_420_888) { "the image is not YUV_420_888" }
        val size = image.width * image.height + (image.width + 1) / 2 * 2 * ((image.height + 1) / 2)
        if (frame.capacity() != size) frame = ByteBuffer.allocateDirect(size)
        val (y, u, v) = image.planes
        reason = nativeProcess(
            open(), y.buffer, y.rowStride, u.buffer, u.rowStride, u.pixelStride,
            v.buffer, v.rowStride, v.pixelStride, image.width, image.height, frame
        )?.decodeToString()
        return if (reason == null) frame.apply { rewind() } else null
    }

    /** Frees the native half. */
    override fun close() {
        if (handle != 0L) nativeDestroy(handle)
        handle = 0L
    }

    private fun open() = handle.also { check(it != 0L) { "the beautifier is closed" } }

    private companion object {
        init {
            System.loadLibrary("beautifier")
        }

        @JvmStatic external fun nativeCreate(): Long
        @JvmStatic external fun nativeDestroy(handle: Long)
        @JvmStatic external fun nativeSet(
            handle: Long, smoothing: Float, whitening: Float, table: ByteArray, intensity: Float
        )
        @JvmStatic external fun nativeProcess(
            handle: Long,
            y: ByteBuffer, yRowStride: Int,
            u: ByteBuffer, uRowStride: Int, uPixelStride: Int,
            v: ByteBuffer, vRowStride: Int, vPixelStride: Int,
            width: Int, height: Int, nv12: ByteBuffer
        ): ByteArray?
    }
}
