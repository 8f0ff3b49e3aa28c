//! Statics of a device in Rust: structures, an enumeration with and without data, a union, tuples.
#![no_std]
#![no_main]
#![allow(dead_code)]

use core::sync::atomic::{AtomicU32, Ordering};

#[repr(u8)]
pub enum Mode {
    Off,
    Manual = 3,
}

pub enum Event {
    Idle,
    Sample(u16),
    Limits { low: i32, high: i32 },
}

#[repr(C)]
pub union Word {
    whole: u32,
    halves: [u16; 2],
}

pub struct Motor {
    speed: f32,
    position: i64,
    mode: Mode,
    gains: [f32; 3],
    word: Word,
    pair: (u8, u16),
    is_ready: bool,
    letter: char,
}

#[no_mangle]
pub static mut MOTOR: Motor = Motor {
    speed: 1.5,
    position: -2,
    mode: Mode::Manual,
    gains: [1.0, 2.0, 3.0],
    word: Word { whole: 4 },
    pair: (5, 6),
    is_ready: true,
    letter: 'a',
};
#[no_mangle]
pub static TICKS: AtomicU32 = AtomicU32::new(7);
static mut EVENT: Event = Event::Limits { low: -1, high: 1 };
static NAME: &str = "plant";

mod inner {
    pub static mut COUNTER: i16 = 8;
}

#[no_mangle]
pub extern "C" fn reset() -> u32 {
    static mut STARTS: u16 = 9;
    unsafe {
        STARTS = STARTS.wrapping_add(NAME.len() as u16);
        inner::COUNTER = inner::COUNTER.wrapping_add(STARTS as i16);
        if let Event::Sample(value) = EVENT {
            MOTOR.pair.1 = value;
        }
        EVENT = Event::Sample(STARTS);
    }
    TICKS.load(Ordering::Relaxed)
}

#[panic_handler]
fn panic(_: &core::panic::PanicInfo) -> ! {
    loop {}
}
