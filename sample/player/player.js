// Binds the buttons of the page to the video. A click on the picture plays or pauses as well.
const movie = document.getElementById('movie');
const place = document.getElementById('place');
const clock = document.getElementById('clock');

function asClock(seconds) {
  const whole = Math.floor(seconds || 0);
  return Math.floor(whole / 60) + ':' + String(whole % 60).padStart(2, '0');
}

function toggle() {
  if (movie.paused) movie.play(); else movie.pause();
}

function showPlace() {
  place.value = movie.duration ? Math.round(1000 * movie.currentTime / movie.duration) : 0;
  clock.textContent = asClock(movie.currentTime) + ' / ' + asClock(movie.duration);
}

document.getElementById('play').addEventListener('click', toggle);
movie.addEventListener('click', toggle);
document.getElementById('stop').addEventListener('click', () => {
  movie.pause();
  movie.currentTime = 0;
});
document.getElementById('mute').addEventListener('click', () => { movie.muted = !movie.muted; });
document.getElementById('full').addEventListener('click', () => movie.requestFullscreen());
place.addEventListener('input', () => {
  if (movie.duration) movie.currentTime = movie.duration * place.value / 1000;
});
movie.addEventListener('timeupdate', showPlace);
movie.addEventListener('loadedmetadata', showPlace);
